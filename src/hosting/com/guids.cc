// Defines the GUIDs of pelicor.idl (CLSID_CPelicor, IID_IPelicor, LIBID_PelicorLib) once for
// the whole server; every other file only declares them through the widl header.
#include <ole2.h>
#include <windows.h>

#include <initguid.h>

#include "pelicor_idl.h"
