// PelicorObject: the COM object of the class CPelicor, one facade::CPelicor behind the dual
// interface IPelicor. The 25 methods convert their BSTR arguments once (NarrowArg), call the
// service and return S_OK or S_FALSE with msg set (method_call.h). IDispatch works from the type
// library in the module's own resource: names and ids through the type information, calls by id
// through late_binding.h.
//
// Apartment-threaded: one thread calls an object at a time. The reference count alone is
// thread-safe, as COM requires. The object counts as a server reference while it lives.
#ifndef PELICOR_HOSTING_COM_PELICOR_OBJECT_H_
#define PELICOR_HOSTING_COM_PELICOR_OBJECT_H_

#include <windows.h>

#include "facade/pelicor.h"
#include "hosting/com/held.h"
#include "pelicor_idl.h"

namespace com {

class PelicorObject final : public IPelicor {
 public:
  PelicorObject();
  PelicorObject(const PelicorObject&) = delete;
  PelicorObject& operator=(const PelicorObject&) = delete;

  // IUnknown.
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IDispatch.
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) override;

  // IPelicor, in slot order.
  STDMETHODIMP FtpGetTraceFileList(unsigned short listStyle, BSTR* msg) override;
  STDMETHODIMP FtpGetTraceFile(BSTR _fileName, BSTR* msg) override;
  STDMETHODIMP NfsGetTraceFile(BSTR _fileName, BSTR* msg) override;
  STDMETHODIMP FtpSetConnectInfo(BSTR hostname, BSTR username, BSTR password, BSTR udump,
                                 BSTR* msg) override;
  STDMETHODIMP ParseFile(BSTR fileName, unsigned short parseOption, unsigned short isAggregated,
                         unsigned short xmlType, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP FtpParseFile(BSTR fileName, unsigned short parseOption, unsigned short isAggregated,
                            unsigned short xmlType, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP NfsParseFile(BSTR fileName, unsigned short parseOption, unsigned short isAggregated,
                            unsigned short xmlType, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP NfsSetConnectInfo(BSTR udump, BSTR* msg) override;
  STDMETHODIMP NfsGetTraceFileList(unsigned short listStyle, BSTR* msg) override;
  STDMETHODIMP SetWorkingDir(BSTR wDir, BSTR* msg) override;
  STDMETHODIMP SetSortOption(unsigned short prs, unsigned short exe, unsigned short fch,
                             unsigned short key, BSTR* msg) override;
  STDMETHODIMP FtpGetTraceFilePID(BSTR PID, unsigned short contents, BSTR* fname,
                                  BSTR* msg) override;
  STDMETHODIMP NfsGetTraceFilePID(BSTR PID, unsigned short contents, BSTR* fname,
                                  BSTR* msg) override;
  STDMETHODIMP ParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                           BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP FtpParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                              BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP NfsParseFileEx(BSTR fileName, unsigned short count, unsigned short flag,
                              BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP ZantivFtpTrcStartUp(BSTR hostname, BSTR username, BSTR password, BSTR udump,
                                   BSTR PID, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP ZantivNfsTrcStartUp(BSTR udump, BSTR PID, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP ZantivUtlTrcStartUp(UINT64 oracleHandle, unsigned short ver, BSTR username,
                                   BSTR password, BSTR dsn, BSTR udump, BSTR sid, BSTR PID,
                                   BSTR marker, BSTR* outputXML, BSTR* msg) override;
  STDMETHODIMP ZantivGetTraceInfo(BSTR statement_id, BSTR OraVer, BSTR* msg) override;
  STDMETHODIMP FtpValidation(BSTR hostname, BSTR username, BSTR password, BSTR udump, BSTR PID,
                             BSTR* msg) override;
  STDMETHODIMP NfsValidation(BSTR udump, BSTR PID, BSTR* msg) override;
  STDMETHODIMP UtlValidation(UINT64 oracleHandle, unsigned short ver, BSTR username, BSTR password,
                             BSTR dsn, BSTR udump, BSTR sid, BSTR PID, BSTR* msg) override;
  STDMETHODIMP FtpGetTraceFileListPID(BSTR PID, BSTR* msg) override;
  STDMETHODIMP NfsGetTraceFileListPID(BSTR PID, BSTR* msg) override;

 private:
  ~PelicorObject();
  // Loads both views of the type information on first use.
  HRESULT EnsureTypeInfo() noexcept;

  LONG references_ = 1;
  facade::CPelicor service_;
  Held<ITypeInfo> dispatch_info_;
  Held<ITypeInfo> vtable_info_;
};

}  // namespace com

#endif  // PELICOR_HOSTING_COM_PELICOR_OBJECT_H_
