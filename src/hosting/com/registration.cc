#include "hosting/com/registration.h"

#include <string>

#include "hosting/com/held.h"
#include "hosting/com/server_module.h"
#include "pelicor_idl.h"

// In oleaut32 since Windows Vista, but missing from MinGW's oleauto.h.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help_dir);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library, WORD major, WORD minor, LCID locale,
                                        SYSKIND kind);
}

namespace com {
namespace {

constexpr wchar_t kFriendlyName[] = L"CPelicor Object";
constexpr wchar_t kProgId[] = L"Pelicor.CPelicor.1";
constexpr wchar_t kIndependentProgId[] = L"Pelicor.CPelicor";

// An open registry key, closed at scope end.
class RegKey {
 public:
  RegKey() = default;
  RegKey(const RegKey&) = delete;
  RegKey& operator=(const RegKey&) = delete;
  ~RegKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }
  // For the out parameter of RegOpenKeyEx; the key must not be open yet.
  HKEY& handle() { return key_; }

  // Creates (or opens) `path` below `parent`.
  LSTATUS Create(HKEY parent, const std::wstring& path) {
    return RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_ALL_ACCESS, nullptr, &key_, nullptr);
  }
  // Sets the value `name` (nullptr: the key's default value) to `text`.
  LSTATUS SetText(const wchar_t* name, const std::wstring& text) const {
    const DWORD bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                          bytes);
  }

 private:
  HKEY key_ = nullptr;
};

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

// Creates `path` below `classes` with the default value `text` (none when null) and, when
// `name` is given, the named value `value`.
LSTATUS WriteKey(HKEY classes, const std::wstring& path, const wchar_t* text,
                 const wchar_t* name = nullptr, const std::wstring& value = std::wstring()) {
  RegKey key;
  LSTATUS status = key.Create(classes, path);
  if (status == ERROR_SUCCESS && text != nullptr) status = key.SetText(nullptr, text);
  if (status == ERROR_SUCCESS && name != nullptr) status = key.SetText(name, value);
  return status;
}

LSTATUS WriteClassKeys(HKEY classes, const std::wstring& dll_path) {
  const std::wstring clsid = GuidText(CLSID_CPelicor);
  const std::wstring clsid_key = L"CLSID\\" + clsid;
  const std::wstring libid = GuidText(LIBID_PelicorLib);
  const std::wstring independent = kIndependentProgId;
  struct Key {
    std::wstring path;
    const wchar_t* text;
    const wchar_t* name;
    std::wstring value;
  };
  const Key keys[] = {
      {clsid_key, kFriendlyName, nullptr, L""},
      {clsid_key + L"\\InprocServer32", dll_path.c_str(), L"ThreadingModel", L"Apartment"},
      {clsid_key + L"\\ProgID", kProgId, nullptr, L""},
      {clsid_key + L"\\VersionIndependentProgID", kIndependentProgId, nullptr, L""},
      {clsid_key + L"\\Programmable", nullptr, nullptr, L""},
      {clsid_key + L"\\TypeLib", libid.c_str(), nullptr, L""},
      {kProgId, kFriendlyName, nullptr, L""},
      {std::wstring(kProgId) + L"\\CLSID", clsid.c_str(), nullptr, L""},
      {independent, kFriendlyName, nullptr, L""},
      {independent + L"\\CLSID", clsid.c_str(), nullptr, L""},
      {independent + L"\\CurVer", kProgId, nullptr, L""},
  };
  for (const Key& key : keys) {
    const LSTATUS status = WriteKey(classes, key.path, key.text, key.name, key.value);
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

// Removes `path` below `classes` when it holds nothing: a per-user CLSID key that only our
// registration created (HKLM's always holds other classes).
void DeleteIfEmpty(HKEY classes, const wchar_t* path) {
  RegKey key;
  if (RegOpenKeyExW(classes, path, 0, KEY_READ, &key.handle()) != ERROR_SUCCESS) return;
  DWORD subkeys = 1;
  DWORD values = 1;
  if (RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values,
                       nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
      subkeys == 0 && values == 0) {
    RegDeleteKeyW(classes, path);
  }
}

LSTATUS DeleteClassKeys(HKEY classes) {
  const std::wstring trees[] = {L"CLSID\\" + GuidText(CLSID_CPelicor), kProgId, kIndependentProgId};
  LSTATUS result = ERROR_SUCCESS;
  for (const std::wstring& tree : trees) {
    const LSTATUS status = RegDeleteTreeW(classes, tree.c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) result = status;
  }
  DeleteIfEmpty(classes, L"CLSID");
  return result;
}

HRESULT RegisterTypeLibrary(RegistryScope scope, const std::wstring& dll_path) {
  Held<ITypeLib> library;
  HRESULT hr = LoadTypeLibEx(dll_path.c_str(), REGKIND_NONE, library.out());
  if (FAILED(hr)) return hr;
  // The API takes non-const strings but does not write to them.
  std::wstring path = dll_path;
  return scope == RegistryScope::kMachine
             ? RegisterTypeLib(library.get(), &path[0], nullptr)
             : RegisterTypeLibForUser(library.get(), &path[0], nullptr);
}

HRESULT UnregisterTypeLibrary(RegistryScope scope) {
  // Not registered (any more) is what unregistering wants; the unregister functions would call
  // it an error, each system with its own code.
  BSTR registered_path = nullptr;
  if (FAILED(QueryPathOfRegTypeLib(LIBID_PelicorLib, 1, 0, LANG_NEUTRAL, &registered_path))) {
    return S_OK;
  }
  SysFreeString(registered_path);
  const SYSKIND kind = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
  return scope == RegistryScope::kMachine
             ? UnRegisterTypeLib(LIBID_PelicorLib, 1, 0, LANG_NEUTRAL, kind)
             : UnRegisterTypeLibForUser(LIBID_PelicorLib, 1, 0, LANG_NEUTRAL, kind);
}

LSTATUS OpenClasses(RegistryScope scope, RegKey* classes) {
  const HKEY hive = scope == RegistryScope::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  return classes->Create(hive, L"Software\\Classes");
}

HRESULT RegisterOrThrow(RegistryScope scope) {
  const std::wstring dll_path = ServerPath();
  if (dll_path.empty()) return HRESULT_FROM_WIN32(GetLastError());
  RegKey classes;
  LSTATUS status = OpenClasses(scope, &classes);
  if (status == ERROR_SUCCESS) status = WriteClassKeys(classes.get(), dll_path);
  if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  return RegisterTypeLibrary(scope, dll_path);
}

HRESULT UnregisterOrThrow(RegistryScope scope) {
  const HRESULT library = UnregisterTypeLibrary(scope);
  RegKey classes;
  LSTATUS status = OpenClasses(scope, &classes);
  if (status == ERROR_SUCCESS) status = DeleteClassKeys(classes.get());
  if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  return library;
}

}  // namespace

bool IsAccessDenied(HRESULT hr) noexcept {
  return hr == HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED) || hr == E_ACCESSDENIED ||
         hr == TYPE_E_REGISTRYACCESS;
}

HRESULT RegisterServer(RegistryScope scope) noexcept {
  HRESULT hr = E_OUTOFMEMORY;
  try {
    hr = RegisterOrThrow(scope);
  } catch (...) {
    hr = E_OUTOFMEMORY;
  }
  if (FAILED(hr)) UnregisterServer(scope);
  return hr;
}

HRESULT UnregisterServer(RegistryScope scope) noexcept {
  try {
    return UnregisterOrThrow(scope);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace com
