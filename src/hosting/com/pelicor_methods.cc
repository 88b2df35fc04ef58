// The 25 methods of IPelicor: each converts its BSTR arguments once (NarrowArg keeps a null BSTR
// apart from an empty one) and calls the service inside RunMethod's frame.
#include <string>
#include <utility>

#include "hosting/com/bstr_text.h"
#include "hosting/com/method_call.h"
#include "hosting/com/pelicor_object.h"

namespace com {
namespace {

// A method whose only output is msg; `work(&message)` answers 0 or 1.
template <typename Work>
HRESULT MsgOnly(BSTR* msg, Work&& work) noexcept {
  return RunMethod(nullptr, msg, false,
                   [&](std::string*, std::string* message) { return work(message); });
}

// A method with one output besides msg; `work(&output, &message)`.
template <typename Work>
HRESULT WithOutput(BSTR* out, BSTR* msg, Work&& work) noexcept {
  return RunMethod(out, msg, true, std::forward<Work>(work));
}

using A = NarrowArg;
using S = std::string;

}  // namespace

STDMETHODIMP PelicorObject::FtpGetTraceFileList(unsigned short listStyle, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.FtpGetTraceFileList(listStyle, m); });
}

STDMETHODIMP PelicorObject::FtpGetTraceFile(BSTR _fileName, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.FtpGetTraceFile(A(_fileName).c_str(), m); });
}

STDMETHODIMP PelicorObject::NfsGetTraceFile(BSTR _fileName, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.NfsGetTraceFile(A(_fileName).c_str(), m); });
}

STDMETHODIMP PelicorObject::FtpSetConnectInfo(BSTR hostname, BSTR username, BSTR password,
                                              BSTR udump, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) {
    return service_.FtpSetConnectInfo(A(hostname).c_str(), A(username).c_str(), A(password).c_str(),
                                      A(udump).c_str(), m);
  });
}

STDMETHODIMP PelicorObject::ParseFile(BSTR fileName, unsigned short parseOption,
                                      unsigned short isAggregated, unsigned short xmlType,
                                      BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.ParseFile(A(fileName).c_str(), parseOption, isAggregated, xmlType, o, m);
  });
}

STDMETHODIMP PelicorObject::FtpParseFile(BSTR fileName, unsigned short parseOption,
                                         unsigned short isAggregated, unsigned short xmlType,
                                         BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.FtpParseFile(A(fileName).c_str(), parseOption, isAggregated, xmlType, o, m);
  });
}

STDMETHODIMP PelicorObject::NfsParseFile(BSTR fileName, unsigned short parseOption,
                                         unsigned short isAggregated, unsigned short xmlType,
                                         BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.NfsParseFile(A(fileName).c_str(), parseOption, isAggregated, xmlType, o, m);
  });
}

STDMETHODIMP PelicorObject::NfsSetConnectInfo(BSTR udump, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.NfsSetConnectInfo(A(udump).c_str(), m); });
}

STDMETHODIMP PelicorObject::NfsGetTraceFileList(unsigned short listStyle, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.NfsGetTraceFileList(listStyle, m); });
}

STDMETHODIMP PelicorObject::SetWorkingDir(BSTR wDir, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.SetWorkingDir(A(wDir).c_str(), m); });
}

STDMETHODIMP PelicorObject::SetSortOption(unsigned short prs, unsigned short exe,
                                          unsigned short fch, unsigned short key, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.SetSortOption(prs, exe, fch, key, m); });
}

STDMETHODIMP PelicorObject::FtpGetTraceFilePID(BSTR PID, unsigned short contents, BSTR* fname,
                                               BSTR* msg) {
  return WithOutput(fname, msg, [&](S* o, S* m) {
    return service_.FtpGetTraceFilePID(A(PID).c_str(), contents, o, m);
  });
}

STDMETHODIMP PelicorObject::NfsGetTraceFilePID(BSTR PID, unsigned short contents, BSTR* fname,
                                               BSTR* msg) {
  return WithOutput(fname, msg, [&](S* o, S* m) {
    return service_.NfsGetTraceFilePID(A(PID).c_str(), contents, o, m);
  });
}

STDMETHODIMP PelicorObject::ParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                                        BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.ParseFileEx(A(fileName).c_str(), count, flag, o, m);
  });
}

STDMETHODIMP PelicorObject::FtpParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                                           BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.FtpParseFileEx(A(fileName).c_str(), count, flag, o, m);
  });
}

STDMETHODIMP PelicorObject::NfsParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                                           BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.NfsParseFileEx(A(fileName).c_str(), count, flag, o, m);
  });
}

STDMETHODIMP PelicorObject::ZantivFtpTrcStartUp(BSTR hostname, BSTR username, BSTR password,
                                                BSTR udump, BSTR PID, BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.ZantivFtpTrcStartUp(A(hostname).c_str(), A(username).c_str(),
                                        A(password).c_str(), A(udump).c_str(), A(PID).c_str(), o,
                                        m);
  });
}

STDMETHODIMP PelicorObject::ZantivNfsTrcStartUp(BSTR udump, BSTR PID, BSTR* outputXML, BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.ZantivNfsTrcStartUp(A(udump).c_str(), A(PID).c_str(), o, m);
  });
}

STDMETHODIMP PelicorObject::ZantivUtlTrcStartUp(UINT64 oracleHandle, unsigned short ver,
                                                BSTR username, BSTR password, BSTR dsn, BSTR udump,
                                                BSTR sid, BSTR PID, BSTR marker, BSTR* outputXML,
                                                BSTR* msg) {
  return WithOutput(outputXML, msg, [&](S* o, S* m) {
    return service_.ZantivUtlTrcStartUp(oracleHandle, ver, A(username).c_str(), A(password).c_str(),
                                        A(dsn).c_str(), A(udump).c_str(), A(sid).c_str(),
                                        A(PID).c_str(), A(marker).c_str(), o, m);
  });
}

STDMETHODIMP PelicorObject::ZantivGetTraceInfo(BSTR statement_id, BSTR OraVer, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) {
    return service_.ZantivGetTraceInfo(A(statement_id).c_str(), A(OraVer).c_str(), m);
  });
}

STDMETHODIMP PelicorObject::FtpValidation(BSTR hostname, BSTR username, BSTR password, BSTR udump,
                                          BSTR PID, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) {
    return service_.FtpValidation(A(hostname).c_str(), A(username).c_str(), A(password).c_str(),
                                  A(udump).c_str(), A(PID).c_str(), m);
  });
}

STDMETHODIMP PelicorObject::NfsValidation(BSTR udump, BSTR PID, BSTR* msg) {
  return MsgOnly(msg,
                 [&](S* m) { return service_.NfsValidation(A(udump).c_str(), A(PID).c_str(), m); });
}

STDMETHODIMP PelicorObject::UtlValidation(UINT64 oracleHandle, unsigned short ver, BSTR username,
                                          BSTR password, BSTR dsn, BSTR udump, BSTR sid, BSTR PID,
                                          BSTR* msg) {
  return MsgOnly(msg, [&](S* m) {
    return service_.UtlValidation(oracleHandle, ver, A(username).c_str(), A(password).c_str(),
                                  A(dsn).c_str(), A(udump).c_str(), A(sid).c_str(), A(PID).c_str(),
                                  m);
  });
}

STDMETHODIMP PelicorObject::FtpGetTraceFileListPID(BSTR PID, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.FtpGetTraceFileListPID(A(PID).c_str(), m); });
}

STDMETHODIMP PelicorObject::NfsGetTraceFileListPID(BSTR PID, BSTR* msg) {
  return MsgOnly(msg, [&](S* m) { return service_.NfsGetTraceFileListPID(A(PID).c_str(), m); });
}

}  // namespace com
