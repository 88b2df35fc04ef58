#include "hosting/com/server_module.h"

#include <atomic>

#include "hosting/com/held.h"
#include "pelicor_idl.h"

namespace com {
namespace {

std::atomic<long>& References() {
  static std::atomic<long> references{0};
  return references;
}

}  // namespace

HMODULE ServerModule() noexcept {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&ServerModule), &module);
  return module;
}

std::wstring ServerPath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameW(ServerModule(), &path[0], size);
    if (length == 0) return std::wstring();
    if (length < size) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);  // truncated: a path longer than MAX_PATH
  }
}

void AddServerReference() noexcept {
  ++References();
}

void ReleaseServerReference() noexcept {
  --References();
}

bool ServerInUse() noexcept {
  return References().load() > 0;
}

HRESULT LoadPelicorTypeInfo(ITypeInfo** dispatch, ITypeInfo** vtable) noexcept {
  std::wstring path;
  try {
    path = ServerPath();
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  if (path.empty()) return HRESULT_FROM_WIN32(GetLastError());
  Held<ITypeLib> library;
  HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.out());
  if (FAILED(hr)) return hr;
  Held<ITypeInfo> dispatch_view;
  hr = library.get()->GetTypeInfoOfGuid(IID_IPelicor, dispatch_view.out());
  if (FAILED(hr)) return hr;
  if (vtable != nullptr) {
    // The dual interface's vtable half: its functions carry the vtable offsets.
    HREFTYPE vtable_ref = 0;
    hr = dispatch_view.get()->GetRefTypeOfImplType(static_cast<UINT>(-1), &vtable_ref);
    if (FAILED(hr)) return hr;
    hr = dispatch_view.get()->GetRefTypeInfo(vtable_ref, vtable);
    if (FAILED(hr)) return hr;
  }
  if (dispatch != nullptr) *dispatch = dispatch_view.release();
  return S_OK;
}

}  // namespace com
