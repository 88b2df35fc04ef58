#include "hosting/com/pelicor_object.h"

#include "hosting/com/late_binding.h"
#include "hosting/com/server_module.h"

namespace com {

PelicorObject::PelicorObject() {
  AddServerReference();
}

PelicorObject::~PelicorObject() {
  ReleaseServerReference();
}

STDMETHODIMP PelicorObject::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
      IsEqualIID(iid, IID_IPelicor)) {
    *object = static_cast<IPelicor*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) PelicorObject::AddRef() {
  return static_cast<ULONG>(InterlockedIncrement(&references_));
}

STDMETHODIMP_(ULONG) PelicorObject::Release() {
  const LONG left = InterlockedDecrement(&references_);
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

HRESULT PelicorObject::EnsureTypeInfo() noexcept {
  if (dispatch_info_.get() != nullptr) return S_OK;
  return LoadPelicorTypeInfo(dispatch_info_.out(), vtable_info_.out());
}

STDMETHODIMP PelicorObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP PelicorObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  const HRESULT hr = EnsureTypeInfo();
  if (FAILED(hr)) return hr;
  dispatch_info_.get()->AddRef();
  *info = dispatch_info_.get();
  return S_OK;
}

STDMETHODIMP PelicorObject::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const HRESULT hr = EnsureTypeInfo();
  if (FAILED(hr)) return hr;
  return DispGetIDsOfNames(dispatch_info_.get(), names, count, ids);
}

STDMETHODIMP PelicorObject::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   UINT* bad_argument) {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  const HRESULT hr = EnsureTypeInfo();
  if (FAILED(hr)) return hr;
  return InvokeByTypeInfo(static_cast<IPelicor*>(this), vtable_info_.get(), id, locale, flags,
                          params, result, exception, bad_argument);
}

}  // namespace com
