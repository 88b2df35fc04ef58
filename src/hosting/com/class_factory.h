// The class object of CPelicor that DllGetClassObject hands out. It makes PelicorObjects (no
// aggregation) and keeps the server loaded while it lives or while LockServer(TRUE) holds it.
#ifndef PELICOR_HOSTING_COM_CLASS_FACTORY_H_
#define PELICOR_HOSTING_COM_CLASS_FACTORY_H_

#include <windows.h>

namespace com {

class ClassFactory final : public IClassFactory {
 public:
  ClassFactory();
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  STDMETHODIMP LockServer(BOOL lock) override;

 private:
  ~ClassFactory();
  LONG references_ = 1;
};

}  // namespace com

#endif  // PELICOR_HOSTING_COM_CLASS_FACTORY_H_
