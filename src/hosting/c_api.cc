// The C ABI over facade::CPelicor. Each entry point hands every output out as a new malloc'd
// string (freed by pelicor_free) and lets no exception through: a failure the service object
// does not report itself (out of memory, a bug) becomes result 1 with its text in msg.
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "facade/pelicor.h"
#include "pelicor/pelicor.h"
#include "support/exceptions.h"

struct pelicor {
  facade::CPelicor service;
};

namespace {

// Handed out when a copy cannot be allocated, so that no output is ever NULL; pelicor_free
// leaves it alone.
char kEmptyOnNoMemory[1] = "";

char* CopyOut(const std::string& text) noexcept {
  auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) return kEmptyOnNoMemory;
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

void HandOut(char** out, const std::string& text) noexcept {
  if (out != nullptr) *out = CopyOut(text);
}

void Describe(std::string* message, const char* text) noexcept {
  try {
    *message = text;
  } catch (...) {
    message->clear();
  }
}

// Calls `call(service, &msg)` under the catch-all and hands msg out.
template <typename Call>
int Invoke(pelicor* p, char** msg, Call&& call) noexcept {
  std::string message;
  int result = 1;
  try {
    if (p == nullptr) {
      message = "pelicor: the object is NULL";
    } else {
      result = call(p->service, &message);
    }
  } catch (const exceptions::ExceptionBase& failure) {
    result = 1;
    try {
      message = failure.Message();
    } catch (...) {
      message.clear();
    }
  } catch (const std::exception& failure) {
    result = 1;
    Describe(&message, failure.what());
  } catch (...) {
    result = 1;
    Describe(&message, "pelicor: unknown failure");
  }
  HandOut(msg, message);
  return result;
}

// As Invoke, for methods with one output besides msg.
template <typename Call>
int InvokeWithOutput(pelicor* p, char** out, char** msg, Call&& call) noexcept {
  std::string output;
  const int result = Invoke(p, msg, [&](facade::CPelicor& service, std::string* message) {
    return call(service, &output, message);
  });
  HandOut(out, output);
  return result;
}

}  // namespace

extern "C" {

pelicor* pelicor_new(void) {
  return new (std::nothrow) pelicor();
}

void pelicor_delete(pelicor* p) {
  delete p;
}

void pelicor_free(char* s) {
  if (s != kEmptyOnNoMemory) std::free(s);
}

int pelicor_FtpGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.FtpGetTraceFileList(listStyle, m);
  });
}

int pelicor_FtpGetTraceFile(pelicor* p, const char* fileName, char** msg) {
  return Invoke(
      p, msg, [&](facade::CPelicor& s, std::string* m) { return s.FtpGetTraceFile(fileName, m); });
}

int pelicor_NfsGetTraceFile(pelicor* p, const char* fileName, char** msg) {
  return Invoke(
      p, msg, [&](facade::CPelicor& s, std::string* m) { return s.NfsGetTraceFile(fileName, m); });
}

int pelicor_FtpSetConnectInfo(pelicor* p, const char* hostname, const char* username,
                              const char* password, const char* udump, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.FtpSetConnectInfo(hostname, username, password, udump, m);
  });
}

int pelicor_ParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                      unsigned short isAggregated, unsigned short xmlType, char** outputXML,
                      char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.ParseFile(fileName, parseOption, isAggregated, xmlType, o, m);
                          });
}

int pelicor_FtpParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                         unsigned short isAggregated, unsigned short xmlType, char** outputXML,
                         char** msg) {
  return InvokeWithOutput(
      p, outputXML, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
        return s.FtpParseFile(fileName, parseOption, isAggregated, xmlType, o, m);
      });
}

int pelicor_NfsParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                         unsigned short isAggregated, unsigned short xmlType, char** outputXML,
                         char** msg) {
  return InvokeWithOutput(
      p, outputXML, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
        return s.NfsParseFile(fileName, parseOption, isAggregated, xmlType, o, m);
      });
}

int pelicor_NfsSetConnectInfo(pelicor* p, const char* udump, char** msg) {
  return Invoke(p, msg,
                [&](facade::CPelicor& s, std::string* m) { return s.NfsSetConnectInfo(udump, m); });
}

int pelicor_NfsGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.NfsGetTraceFileList(listStyle, m);
  });
}

int pelicor_SetWorkingDir(pelicor* p, const char* wDir, char** msg) {
  return Invoke(p, msg,
                [&](facade::CPelicor& s, std::string* m) { return s.SetWorkingDir(wDir, m); });
}

int pelicor_SetSortOption(pelicor* p, unsigned short prs, unsigned short exe, unsigned short fch,
                          unsigned short key, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.SetSortOption(prs, exe, fch, key, m);
  });
}

int pelicor_FtpGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents, char** fname,
                               char** msg) {
  return InvokeWithOutput(p, fname, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
    return s.FtpGetTraceFilePID(PID, contents, o, m);
  });
}

int pelicor_NfsGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents, char** fname,
                               char** msg) {
  return InvokeWithOutput(p, fname, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
    return s.NfsGetTraceFilePID(PID, contents, o, m);
  });
}

int pelicor_ParseFileEx(pelicor* p, const char* fileName, unsigned short count, unsigned short flag,
                        char** outputXML, char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.ParseFileEx(fileName, count, flag, o, m);
                          });
}

int pelicor_FtpParseFileEx(pelicor* p, const char* fileName, unsigned short count,
                           unsigned short flag, char** outputXML, char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.FtpParseFileEx(fileName, count, flag, o, m);
                          });
}

int pelicor_NfsParseFileEx(pelicor* p, const char* fileName, unsigned short count,
                           unsigned short flag, char** outputXML, char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.NfsParseFileEx(fileName, count, flag, o, m);
                          });
}

int pelicor_ZantivFtpTrcStartUp(pelicor* p, const char* hostname, const char* username,
                                const char* password, const char* udump, const char* PID,
                                char** outputXML, char** msg) {
  return InvokeWithOutput(
      p, outputXML, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
        return s.ZantivFtpTrcStartUp(hostname, username, password, udump, PID, o, m);
      });
}

int pelicor_ZantivNfsTrcStartUp(pelicor* p, const char* udump, const char* PID, char** outputXML,
                                char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.ZantivNfsTrcStartUp(udump, PID, o, m);
                          });
}

int pelicor_ZantivUtlTrcStartUp(pelicor* p, uint64_t oracleHandle, unsigned short ver,
                                const char* username, const char* password, const char* dsn,
                                const char* udump, const char* sid, const char* PID,
                                const char* marker, char** outputXML, char** msg) {
  return InvokeWithOutput(p, outputXML, msg,
                          [&](facade::CPelicor& s, std::string* o, std::string* m) {
                            return s.ZantivUtlTrcStartUp(oracleHandle, ver, username, password, dsn,
                                                         udump, sid, PID, marker, o, m);
                          });
}

int pelicor_ZantivGetTraceInfo(pelicor* p, const char* statement_id, const char* OraVer,
                               char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.ZantivGetTraceInfo(statement_id, OraVer, m);
  });
}

int pelicor_FtpValidation(pelicor* p, const char* hostname, const char* username,
                          const char* password, const char* udump, const char* PID, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.FtpValidation(hostname, username, password, udump, PID, m);
  });
}

int pelicor_NfsValidation(pelicor* p, const char* udump, const char* PID, char** msg) {
  return Invoke(
      p, msg, [&](facade::CPelicor& s, std::string* m) { return s.NfsValidation(udump, PID, m); });
}

int pelicor_UtlValidation(pelicor* p, uint64_t oracleHandle, unsigned short ver,
                          const char* username, const char* password, const char* dsn,
                          const char* udump, const char* sid, const char* PID, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.UtlValidation(oracleHandle, ver, username, password, dsn, udump, sid, PID, m);
  });
}

int pelicor_FtpGetTraceFileListPID(pelicor* p, const char* PID, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.FtpGetTraceFileListPID(PID, m);
  });
}

int pelicor_NfsGetTraceFileListPID(pelicor* p, const char* PID, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.NfsGetTraceFileListPID(PID, m);
  });
}

int pelicor_SftpSetConnectInfo(pelicor* p, const char* hostname, const char* username,
                               const char* password, const char* udump, const char* identityFile,
                               const char* knownHostsFile, unsigned short acceptNewHostKey,
                               char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.SftpSetConnectInfo(hostname, username, password, udump, identityFile, knownHostsFile,
                                acceptNewHostKey, m);
  });
}

int pelicor_SftpGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.SftpGetTraceFileList(listStyle, m);
  });
}

int pelicor_SftpGetTraceFile(pelicor* p, const char* fileName, char** msg) {
  return Invoke(
      p, msg, [&](facade::CPelicor& s, std::string* m) { return s.SftpGetTraceFile(fileName, m); });
}

int pelicor_SftpGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents, char** fname,
                                char** msg) {
  return InvokeWithOutput(p, fname, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
    return s.SftpGetTraceFilePID(PID, contents, o, m);
  });
}

int pelicor_SftpParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                          unsigned short isAggregated, unsigned short xmlType, char** outputXML,
                          char** msg) {
  return InvokeWithOutput(
      p, outputXML, msg, [&](facade::CPelicor& s, std::string* o, std::string* m) {
        return s.SftpParseFile(fileName, parseOption, isAggregated, xmlType, o, m);
      });
}

int pelicor_SetFtpTls(pelicor* p, unsigned short useTls, const char* caFile,
                      unsigned short insecure, char** msg) {
  return Invoke(p, msg, [&](facade::CPelicor& s, std::string* m) {
    return s.SetFtpTls(useTls, caFile, insecure, m);
  });
}

}  // extern "C"
