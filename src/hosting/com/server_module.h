// What the COM server knows about itself as a module: where its DLL is, and whether anything
// still holds it. DllCanUnloadNow asks the counts; objects and class factories add themselves
// while they live, IClassFactory::LockServer adds a lock.
#ifndef PELICOR_HOSTING_COM_SERVER_MODULE_H_
#define PELICOR_HOSTING_COM_SERVER_MODULE_H_

#include <windows.h>

#include <string>

namespace com {

// The DLL this code is linked into (not the host's executable).
HMODULE ServerModule() noexcept;
// Its full path, as registered under InprocServer32 and TypeLib; empty when it cannot be had.
std::wstring ServerPath();

// The module-wide counts. They are process state by nature: COM asks the module, not an object,
// whether it may be unloaded. Thread-safe.
void AddServerReference() noexcept;
void ReleaseServerReference() noexcept;
bool ServerInUse() noexcept;

// Loads the type library from the module's own TYPELIB resource (registered or not) and hands
// out the type information of IPelicor: the dispatch view (`dispatch`) and the vtable view of the
// dual interface (`vtable`), each AddRef'd. Either pointer may be null when not wanted.
HRESULT LoadPelicorTypeInfo(ITypeInfo** dispatch, ITypeInfo** vtable) noexcept;

}  // namespace com

#endif  // PELICOR_HOSTING_COM_SERVER_MODULE_H_
