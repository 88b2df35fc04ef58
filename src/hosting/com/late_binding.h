// IDispatch::Invoke for IPelicor, driven by the type library: the method of a dispatch id, its
// parameter types and its vtable offset all come from the type information, so the ids and the
// slots cannot drift apart from what the type library says.
//
// Beyond what the standard ITypeInfo::Invoke does, scripting hosts are served:
//  - an [out] BSTR* parameter accepts VT_BYREF|VT_BSTR and VT_BYREF|VT_VARIANT (a script passes
//    its variable as a VARIANT by reference); the VARIANT receives a VT_BSTR;
//  - a BSTR parameter given as VT_EMPTY, VT_NULL or a missing optional argument is a null BSTR
//    (the "missing" of the session methods); other types are converted to text;
//  - unsigned short and unsigned __int64 parameters take the usual coercions (VT_I2, VT_I4,
//    VT_UI2, VT_I8, VT_UI8, VT_BSTR digits, ...), out of range gives DISP_E_OVERFLOW;
//  - the method's result, S_OK (0) or S_FALSE (1), is handed back as a VT_I4 in `result`, so a
//    script can test it: r = o.ParseFile(name, 0, 0, 0, xml, msg).
#ifndef PELICOR_HOSTING_COM_LATE_BINDING_H_
#define PELICOR_HOSTING_COM_LATE_BINDING_H_

#include <windows.h>

namespace com {

// Invokes method `id` on `object` (the IPelicor interface pointer) as described by `vtable_info`
// (the vtable view of IPelicor). Arguments as IDispatch::Invoke takes them.
HRESULT InvokeByTypeInfo(void* object, ITypeInfo* vtable_info, DISPID id, LCID locale, WORD flags,
                         DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                         UINT* bad_argument) noexcept;

}  // namespace com

#endif  // PELICOR_HOSTING_COM_LATE_BINDING_H_
