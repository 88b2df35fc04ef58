// The entry points of an in-process COM server, exported by name (undecorated also in the
// 32-bit build). regsvr32 calls DllRegisterServer / DllUnregisterServer, and DllInstall for
// "regsvr32 /n /i:user" (per-user registration, no administrator rights needed).
#include <windows.h>

#include <new>

#include "hosting/com/class_factory.h"
#include "hosting/com/registration.h"
#include "hosting/com/server_module.h"
#include "pelicor_idl.h"

namespace {

// Machine-wide first; a user who may not write HKLM gets the per-user registration instead.
HRESULT WithFallback(HRESULT (*action)(com::RegistryScope)) {
  const HRESULT hr = action(com::RegistryScope::kMachine);
  if (!com::IsAccessDenied(hr)) return hr;
  return action(com::RegistryScope::kUser);
}

}  // namespace

extern "C" {

__declspec(dllexport) HRESULT STDAPICALLTYPE
    DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, CLSID_CPelicor)) return CLASS_E_CLASSNOTAVAILABLE;
  auto* factory = new (std::nothrow) com::ClassFactory();
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT hr = factory->QueryInterface(iid, object);
  factory->Release();
  return hr;
}

__declspec(dllexport) HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return com::ServerInUse() ? S_FALSE : S_OK;
}

__declspec(dllexport) HRESULT STDAPICALLTYPE DllRegisterServer() {
  return WithFallback(&com::RegisterServer);
}

__declspec(dllexport) HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return WithFallback(&com::UnregisterServer);
}

// `command_line` "user" (regsvr32 /i:user) registers for the current user only.
__declspec(dllexport) HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR command_line) {
  const bool user = command_line != nullptr && lstrcmpiW(command_line, L"user") == 0;
  if (!user) return install ? DllRegisterServer() : DllUnregisterServer();
  return install ? com::RegisterServer(com::RegistryScope::kUser)
                 : com::UnregisterServer(com::RegistryScope::kUser);
}

}  // extern "C"
