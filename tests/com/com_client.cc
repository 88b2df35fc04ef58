// The COM server as a Windows host uses it, run under Wine after regsvr32:
//   com_client early FIXTURES SCRATCH FTP_STATE   CoCreateInstance + the IPelicor vtable
//   com_client late FIXTURES SCRATCH FTP_STATE    the ProgID + IDispatch only
//   com_client unload DLL                         DllGetClassObject/DllCanUnloadNow directly
// Paths are Unix paths (Wine's Z: drive). Prints "N passed, N failed"; exit code 1 on failure.
#include <ole2.h>
#include <windows.h>

#include <initguid.h>

#include <cstdio>
#include <string>

#include "checks.h"
#include "early_caller.h"
#include "late_caller.h"
#include "pelicor_idl.h"
#include "scenario.h"
#include "unload_check.h"

namespace com_test {
namespace {

std::string Hex(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lx", static_cast<unsigned long>(hr));
  return text;
}

// Null out pointers are refused before any work; the interfaces of the object.
void EarlyOnly(IPelicor* object, EarlyCaller& caller, Checks& checks) {
  const std::vector<Arg> parse = {Text("x.trc"), Num(0), Num(0), Num(0)};
  checks.ExpectEq(caller.CallWithNullOuts("ParseFile", parse, true, false), E_POINTER,
                  "ParseFile with outputXML null");
  checks.ExpectEq(caller.CallWithNullOuts("ParseFile", parse, false, true), E_POINTER,
                  "ParseFile with msg null");
  checks.ExpectEq(caller.CallWithNullOuts("SetWorkingDir", {Text("x")}, false, true), E_POINTER,
                  "SetWorkingDir with msg null");
  IDispatch* dispatch = nullptr;
  checks.ExpectEq(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)), S_OK,
                  "IPelicor answers IDispatch");
  if (dispatch != nullptr) dispatch->Release();
}

// A working directory outside ASCII reaches the file functions through the ANSI code page and
// back: the share's trace (placed by the scenario) is copied into it.
void NonAsciiWorkingDir(IPelicor* object, const Paths& paths, Checks& checks) {
  const std::wstring dir = Widen(paths.scratch) + L"\\w\u00f6rk";
  char narrow[8];
  BOOL lossy = FALSE;
  WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, L"\u00f6", 1, narrow, sizeof narrow, nullptr,
                      &lossy);
  if (lossy) {
    std::printf("note: the ANSI code page has no o-umlaut; non-ASCII path not checked\n");
    return;
  }
  CreateDirectoryW(dir.c_str(), nullptr);
  BSTR wide_dir = SysAllocString(dir.c_str());
  BSTR name = SysAllocString(L"4242_orcl.trc");
  BSTR msg = nullptr;
  checks.ExpectEq(object->SetWorkingDir(wide_dir, &msg), S_OK, "SetWorkingDir w\u00f6rk");
  SysFreeString(msg);
  msg = nullptr;
  checks.ExpectEq(object->NfsGetTraceFile(name, &msg), S_OK, "NfsGetTraceFile into w\u00f6rk");
  checks.Expect(GetFileAttributesW((dir + L"\\4242_orcl.trc").c_str()) != INVALID_FILE_ATTRIBUTES,
                "the copy is in w\u00f6rk");
  SysFreeString(msg);
  SysFreeString(name);
  SysFreeString(wide_dir);
}

void ExpectInvokeFails(LateCaller& caller, DISPID id, std::vector<VARIANT> args, HRESULT want,
                       const std::string& what, Checks& checks) {
  VARIANT result;
  VariantInit(&result);
  UINT bad = 99;
  const HRESULT hr = caller.InvokeRaw(id, args, &result, &bad);
  checks.Expect(hr == want, what + ": " + Hex(hr));
  for (VARIANT& arg : args) {
    if ((V_VT(&arg) & VT_BYREF) == 0) VariantClear(&arg);
  }
  VariantClear(&result);
}

// A VARIANT of `type`; a VT_BSTR one holds `text`.
VARIANT Variant(VARTYPE type, const wchar_t* text = nullptr) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = type;
  if (type == VT_BSTR) V_BSTR(&value) = SysAllocString(text);
  return value;
}

// Name and help string of `member` (MEMBERID_NIL: the type itself) as "name: help".
std::string Documented(ITypeInfo* info, MEMBERID member) {
  BSTR name = nullptr;
  BSTR help = nullptr;
  info->GetDocumentation(member, &name, &help, nullptr, nullptr);
  const std::string text =
      Narrow(name, SysStringLen(name)) + ": " + Narrow(help, SysStringLen(help));
  SysFreeString(name);
  SysFreeString(help);
  return text;
}

// What object browsers and the host's tools show of the type library.
void TypeLibraryTexts(ITypeInfo* info, Checks& checks) {
  checks.ExpectEq(Documented(info, MEMBERID_NIL), std::string("IPelicor: IPelicor Interface"),
                  "the interface's help string");
  for (const MethodInfo& method : Methods()) {
    const std::string name = method.name;
    const std::string shown = name == "FtpGetTraceFile"   ? "FtpGetTraceFileContent"
                              : name == "NfsGetTraceFile" ? "NfsGetTraceFileContent"
                                                          : name;
    checks.ExpectEq(Documented(info, method.id), name + ": method " + shown,
                    "help string of " + name);
  }
  ITypeLib* library = nullptr;
  UINT index = 0;
  ITypeInfo* coclass = nullptr;
  if (SUCCEEDED(info->GetContainingTypeLib(&library, &index))) {
    library->GetTypeInfoOfGuid(CLSID_CPelicor, &coclass);
    library->Release();
  }
  checks.Expect(
      coclass != nullptr && Documented(coclass, MEMBERID_NIL) == "CPelicor: Pelicor Class",
      "the class's help string");
  if (coclass != nullptr) coclass->Release();
}

// The ids by name, the type information, and what Invoke refuses.
void LateOnly(IDispatch* object, LateCaller& caller, Checks& checks) {
  for (const MethodInfo& method : Methods()) {
    DISPID id = -1;
    const HRESULT hr = caller.IdOf(method.name, &id);
    checks.Expect(hr == S_OK && id == method.id,
                  std::string("GetIDsOfNames ") + method.name + ": " + std::to_string(id));
  }
  DISPID unknown = 0;
  checks.ExpectEq(caller.IdOf("NoSuchMethod", &unknown), DISP_E_UNKNOWNNAME, "unknown name");
  UINT count = 0;
  checks.Expect(object->GetTypeInfoCount(&count) == S_OK && count == 1, "GetTypeInfoCount");
  ITypeInfo* info = nullptr;
  if (checks.Expect(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info) == S_OK && info != nullptr,
                    "GetTypeInfo")) {
    TypeLibraryTexts(info, checks);
    info->Release();
  }

  // SetWorkingDir(wDir, msg): id 12.
  VARIANT msg = Variant(VT_EMPTY);
  VARIANT msg_ref = Variant(VT_BYREF | VT_VARIANT);
  V_VARIANTREF(&msg_ref) = &msg;
  LONG wrong = 0;
  VARIANT wrong_ref = Variant(VT_BYREF | VT_I4);
  V_I4REF(&wrong_ref) = &wrong;
  VARIANT minus_one = Variant(VT_I4);
  V_I4(&minus_one) = -1;
  ExpectInvokeFails(caller, 12, {Variant(VT_BSTR, L"x")}, DISP_E_BADPARAMCOUNT,
                    "one argument short", checks);
  ExpectInvokeFails(caller, 12, {Variant(VT_BSTR, L"x"), wrong_ref}, DISP_E_TYPEMISMATCH,
                    "msg as VT_I4 by ref", checks);
  ExpectInvokeFails(caller, 4, {minus_one, msg_ref}, DISP_E_OVERFLOW, "listStyle -1", checks);
  ExpectInvokeFails(caller, 4, {Variant(VT_BSTR, L"abc"), msg_ref}, DISP_E_TYPEMISMATCH,
                    "listStyle \"abc\"", checks);
  ExpectInvokeFails(caller, 99, {msg_ref}, DISP_E_MEMBERNOTFOUND, "dispatch id 99", checks);
  VariantClear(&msg);

  // A script's Null or Empty for a string is a missing argument.
  for (const VARTYPE missing : {VT_NULL, VT_EMPTY}) {
    std::vector<VARIANT> args = {Variant(VT_BSTR, L"C:\\"), Variant(missing), msg_ref};
    VARIANT result = Variant(VT_EMPTY);
    UINT bad = 0;
    const HRESULT hr = caller.InvokeRaw(25, args, &result, &bad);
    checks.Expect(hr == S_OK && V_VT(&result) == VT_I4 && V_I4(&result) == 1 &&
                      V_VT(&msg) == VT_BSTR &&
                      Narrow(V_BSTR(&msg), SysStringLen(V_BSTR(&msg))) == "PID is empty or NULL!",
                  "NfsValidation with PID of type " + std::to_string(missing));
    VariantClear(&args[0]);
    VariantClear(&msg);
  }
}

int RunClient(const std::string& mode, const Paths& paths) {
  Checks checks;
  if (mode == "early") {
    IPelicor* object = nullptr;
    const HRESULT hr = CoCreateInstance(CLSID_CPelicor, nullptr, CLSCTX_INPROC_SERVER, IID_IPelicor,
                                        reinterpret_cast<void**>(&object));
    if (!checks.Expect(hr == S_OK && object != nullptr, "CoCreateInstance " + Hex(hr))) {
      return checks.Report();
    }
    EarlyCaller caller(object);
    RunScenario(caller, paths, checks);
    EarlyOnly(object, caller, checks);
    NonAsciiWorkingDir(object, paths, checks);
    object->Release();
  } else {
    CLSID clsid{};
    checks.Expect(
        CLSIDFromProgID(L"Pelicor.CPelicor", &clsid) == S_OK && IsEqualCLSID(clsid, CLSID_CPelicor),
        "ProgID Pelicor.CPelicor");
    IDispatch* object = nullptr;
    const HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                        reinterpret_cast<void**>(&object));
    if (!checks.Expect(hr == S_OK && object != nullptr, "CoCreateInstance " + Hex(hr))) {
      return checks.Report();
    }
    LateCaller caller(object);
    LateOnly(object, caller, checks);
    RunScenario(caller, paths, checks);
    object->Release();
  }
  return checks.Report();
}

}  // namespace
}  // namespace com_test

int main(int argc, char** argv) {
  using namespace com_test;
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "unload" && argc == 3) return RunUnload(WindowsPath(argv[2]));
  if ((mode != "early" && mode != "late") || argc != 5) {
    std::fprintf(stderr,
                 "usage: com_client early|late FIXTURES SCRATCH FTP_STATE\n"
                 "       com_client unload DLL\n");
    return 2;
  }
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  const Paths paths{WindowsPath(argv[2]), WindowsPath(argv[3]), WindowsPath(argv[4]),
                    "com-" + mode};
  const int exit_code = RunClient(mode, paths);
  CoUninitialize();
  return exit_code;
}
