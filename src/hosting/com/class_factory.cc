#include "hosting/com/class_factory.h"

#include <new>

#include "hosting/com/pelicor_object.h"
#include "hosting/com/server_module.h"

namespace com {

ClassFactory::ClassFactory() {
  AddServerReference();
}

ClassFactory::~ClassFactory() {
  ReleaseServerReference();
}

STDMETHODIMP ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) ClassFactory::AddRef() {
  return static_cast<ULONG>(InterlockedIncrement(&references_));
}

STDMETHODIMP_(ULONG) ClassFactory::Release() {
  const LONG left = InterlockedDecrement(&references_);
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  // The facade's constructor may throw (out of memory): nothing may cross this boundary.
  PelicorObject* created = nullptr;
  try {
    created = new PelicorObject();
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT hr = created->QueryInterface(iid, object);
  created->Release();  // the creation's own reference; the caller holds its own, if any
  return hr;
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
  if (lock) {
    AddServerReference();
  } else {
    ReleaseServerReference();
  }
  return S_OK;
}

}  // namespace com
