// Self-registration of the server: the keys of the class CPelicor, its two ProgIDs and the type
// library (registered from the DLL's own TYPELIB resource), for the whole machine or for the
// current user only.
//
// Written under Software\Classes of HKLM (machine) or HKCU (user):
//   CLSID\{CLSID_CPelicor}            = "CPelicor Object"
//     InprocServer32                  = <path of this DLL>, ThreadingModel = "Apartment"
//     ProgID                          = "Pelicor.CPelicor.1"
//     VersionIndependentProgID        = "Pelicor.CPelicor"
//     Programmable, TypeLib           = "{LIBID_PelicorLib}"
//   Pelicor.CPelicor.1                = "CPelicor Object", CLSID
//   Pelicor.CPelicor                  = "CPelicor Object", CLSID, CurVer
// and what RegisterTypeLib(ForUser) writes for the type library (TypeLib\, Interface\).
// Unregistering removes exactly these again.
#ifndef PELICOR_HOSTING_COM_REGISTRATION_H_
#define PELICOR_HOSTING_COM_REGISTRATION_H_

#include <windows.h>

namespace com {

enum class RegistryScope { kMachine, kUser };

// A failed registration removes what it wrote before it returns the error.
HRESULT RegisterServer(RegistryScope scope) noexcept;
// Keys that are not there are not an error.
HRESULT UnregisterServer(RegistryScope scope) noexcept;

// True for the errors that mean "not allowed to write there" (HKLM for a user without
// administrator rights), after which the caller falls back to the user's scope.
bool IsAccessDenied(HRESULT hr) noexcept;

}  // namespace com

#endif  // PELICOR_HOSTING_COM_REGISTRATION_H_
