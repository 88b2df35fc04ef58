#include "unload_check.h"

#include <ole2.h>
#include <windows.h>

#include "checks.h"
#include "pelicor_idl.h"

namespace com_test {
namespace {

// An exported function of `module` as its own type (through void(*)(), which any function
// pointer may be cast to and from).
template <typename Function>
Function Entry(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace

// A class object, an object and a server lock each keep the DLL loaded; with all of them gone
// it may go.
int RunUnload(const std::string& dll) {
  Checks checks;
  HMODULE module = LoadLibraryA(dll.c_str());
  if (!checks.Expect(module != nullptr, "LoadLibrary " + dll)) return checks.Report();
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
  const auto get_class_object = Entry<GetClassObject>(module, "DllGetClassObject");
  const auto can_unload = Entry<CanUnloadNow>(module, "DllCanUnloadNow");
  if (!checks.Expect(get_class_object != nullptr && can_unload != nullptr, "entry points")) {
    return checks.Report();
  }
  checks.ExpectEq(can_unload(), S_OK, "nothing made yet");
  IClassFactory* factory = nullptr;
  IUnknown* unknown = nullptr;
  checks.ExpectEq(
      get_class_object(IID_IPelicor, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
      CLASS_E_CLASSNOTAVAILABLE, "another class");
  checks.ExpectEq(
      get_class_object(CLSID_CPelicor, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK,
      "DllGetClassObject");
  if (factory == nullptr) return checks.Report();
  checks.ExpectEq(can_unload(), S_FALSE, "class object held");
  checks.ExpectEq(
      factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&unknown)), S_OK,
      "CreateInstance");
  IUnknown* aggregated = nullptr;
  checks.ExpectEq(
      factory->CreateInstance(unknown, IID_IUnknown, reinterpret_cast<void**>(&aggregated)),
      CLASS_E_NOAGGREGATION, "aggregation refused");
  checks.ExpectEq(factory->LockServer(TRUE), S_OK, "LockServer(TRUE)");
  factory->Release();
  checks.ExpectEq(can_unload(), S_FALSE, "object and lock held");
  if (unknown != nullptr) unknown->Release();
  checks.ExpectEq(can_unload(), S_FALSE, "lock held");
  IClassFactory* again = nullptr;
  get_class_object(CLSID_CPelicor, IID_IClassFactory, reinterpret_cast<void**>(&again));
  if (again != nullptr) {
    again->LockServer(FALSE);
    again->Release();
  }
  checks.ExpectEq(can_unload(), S_OK, "everything released");
  FreeLibrary(module);
  return checks.Report();
}

}  // namespace com_test
