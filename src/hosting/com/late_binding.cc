#include "hosting/com/late_binding.h"

#include <array>

namespace com {
namespace {

// IPelicor's longest method (ZantivUtlTrcStartUp) has 11 parameters.
constexpr UINT kMaxParams = 16;

// The FUNCDESC of one method, released at scope end.
class FuncDesc {
 public:
  FuncDesc(ITypeInfo* info, DISPID id) : info_(info) {
    TYPEATTR* attributes = nullptr;
    if (FAILED(info->GetTypeAttr(&attributes))) return;
    const UINT functions = attributes->cFuncs;
    info->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < functions && desc_ == nullptr; ++i) {
      FUNCDESC* candidate = nullptr;
      if (FAILED(info->GetFuncDesc(i, &candidate))) continue;
      if (candidate->memid == id) {
        desc_ = candidate;
      } else {
        info->ReleaseFuncDesc(candidate);
      }
    }
  }
  FuncDesc(const FuncDesc&) = delete;
  FuncDesc& operator=(const FuncDesc&) = delete;
  ~FuncDesc() {
    if (desc_ != nullptr) info_->ReleaseFuncDesc(desc_);
  }
  const FUNCDESC* get() const { return desc_; }

 private:
  ITypeInfo* info_;
  FUNCDESC* desc_ = nullptr;
};

bool IsMissing(const VARIANT& value) {
  return V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_NULL ||
         (V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND);
}

// A script's variable passed on by reference: the VARIANT it holds.
VARIANTARG* Dereferenced(VARIANTARG* given) {
  while (V_VT(given) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(given) != nullptr) {
    given = V_VARIANTREF(given);
  }
  return given;
}

// A string argument as a new BSTR, keeping a null BSTR null (VariantCopy may turn it into an
// empty one, and the session methods tell the two apart).
HRESULT CopyString(BSTR text, VARIANTARG* converted) {
  V_VT(converted) = VT_BSTR;
  V_BSTR(converted) = nullptr;
  if (text == nullptr) return S_OK;
  V_BSTR(converted) = SysAllocStringLen(text, SysStringLen(text));
  return V_BSTR(converted) == nullptr ? E_OUTOFMEMORY : S_OK;
}

// An [in] argument as the parameter's type `type` (VT_BSTR, VT_UI2, VT_UI8) into `converted`.
HRESULT ConvertIn(VARIANTARG* given, VARTYPE type, LCID locale, VARIANTARG* converted) {
  given = Dereferenced(given);
  if (type == VT_BSTR) {
    if (IsMissing(*given)) return CopyString(nullptr, converted);
    if (V_VT(given) == VT_BSTR) return CopyString(V_BSTR(given), converted);
    if (V_VT(given) == (VT_BYREF | VT_BSTR) && V_BSTRREF(given) != nullptr) {
      return CopyString(*V_BSTRREF(given), converted);
    }
  }
  VARIANT plain;
  VariantInit(&plain);
  HRESULT hr = VariantCopyInd(&plain, given);
  if (SUCCEEDED(hr)) hr = VariantChangeTypeEx(converted, &plain, locale, 0, type);
  VariantClear(&plain);
  return hr;
}

bool IsOutString(const TYPEDESC& type) {
  return type.vt == VT_PTR && type.lptdesc != nullptr && type.lptdesc->vt == VT_BSTR;
}

// Puts a string the method handed out into the caller's by-reference argument; the previous
// content of the caller's variable is released.
void StoreOut(VARIANTARG* given, BSTR text) {
  if (V_VT(given) == (VT_BYREF | VT_VARIANT)) {
    VARIANT* target = V_VARIANTREF(given);
    VariantClear(target);
    V_VT(target) = VT_BSTR;
    V_BSTR(target) = text;
  } else {
    SysFreeString(*V_BSTRREF(given));
    *V_BSTRREF(given) = text;
  }
}

// The arguments of one call in the order of the parameters (IDispatch passes them reversed).
class CallArguments {
 public:
  CallArguments() {
    for (VARIANTARG& value : values_) VariantInit(&value);
    outs_.fill(nullptr);
  }
  CallArguments(const CallArguments&) = delete;
  CallArguments& operator=(const CallArguments&) = delete;
  ~CallArguments() {
    for (VARIANTARG& value : values_) VariantClear(&value);
    for (BSTR out : outs_) SysFreeString(out);
  }

  // Converts every argument; on a mismatch `bad_argument` receives its index in rgvarg.
  HRESULT Prepare(const FUNCDESC& desc, DISPPARAMS& params, LCID locale, UINT* bad_argument) {
    count_ = static_cast<UINT>(desc.cParams);
    for (UINT i = 0; i < count_; ++i) {
      const UINT given_index = count_ - 1 - i;
      VARIANTARG* given = &params.rgvarg[given_index];
      const TYPEDESC& type = desc.lprgelemdescParam[i].tdesc;
      HRESULT hr = S_OK;
      if (IsOutString(type)) {
        const VARTYPE vt = V_VT(given);
        if (vt != (VT_BYREF | VT_BSTR) && vt != (VT_BYREF | VT_VARIANT)) hr = DISP_E_TYPEMISMATCH;
        types_[i] = VT_BYREF | VT_BSTR;
        V_VT(&values_[i]) = VT_BYREF | VT_BSTR;
        V_BSTRREF(&values_[i]) = &outs_[i];
      } else {
        types_[i] = type.vt;
        hr = ConvertIn(given, type.vt, locale, &values_[i]);
      }
      if (FAILED(hr)) {
        if (bad_argument != nullptr) *bad_argument = given_index;
        return hr;
      }
      pointers_[i] = &values_[i];
    }
    return S_OK;
  }

  // Hands every output string to the caller's variables.
  void StoreOuts(DISPPARAMS& params) {
    for (UINT i = 0; i < count_; ++i) {
      if (types_[i] != (VT_BYREF | VT_BSTR)) continue;
      StoreOut(&params.rgvarg[count_ - 1 - i], outs_[i]);
      outs_[i] = nullptr;
      V_VT(&values_[i]) = VT_EMPTY;
    }
  }

  UINT count() const { return count_; }
  VARTYPE* types() { return types_.data(); }
  VARIANTARG** pointers() { return pointers_.data(); }

 private:
  UINT count_ = 0;
  std::array<VARIANTARG, kMaxParams> values_;
  std::array<VARTYPE, kMaxParams> types_{};
  std::array<VARIANTARG*, kMaxParams> pointers_{};
  std::array<BSTR, kMaxParams> outs_;
};

HRESULT ReportFailure(HRESULT method_result, EXCEPINFO* exception) {
  if (exception != nullptr) {
    *exception = EXCEPINFO{};
    exception->scode = method_result;
    exception->bstrSource = SysAllocString(L"Pelicor.CPelicor");
  }
  return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT InvokeByTypeInfo(void* object, ITypeInfo* vtable_info, DISPID id, LCID locale, WORD flags,
                         DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                         UINT* bad_argument) noexcept {
  if ((flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (params == nullptr) return E_INVALIDARG;
  const FuncDesc desc(vtable_info, id);
  if (desc.get() == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
  if (params->cArgs != static_cast<UINT>(desc.get()->cParams)) return DISP_E_BADPARAMCOUNT;
  if (params->cArgs > kMaxParams) return E_UNEXPECTED;

  CallArguments arguments;
  HRESULT hr = arguments.Prepare(*desc.get(), *params, locale, bad_argument);
  if (FAILED(hr)) return hr;
  VARIANT returned;
  VariantInit(&returned);
  hr =
      DispCallFunc(object, static_cast<ULONG_PTR>(desc.get()->oVft), desc.get()->callconv, VT_ERROR,
                   arguments.count(), arguments.types(), arguments.pointers(), &returned);
  if (FAILED(hr)) return hr;
  const HRESULT method_result = V_ERROR(&returned);
  if (FAILED(method_result)) return ReportFailure(method_result, exception);
  arguments.StoreOuts(*params);
  if (result != nullptr) {
    VariantClear(result);
    V_VT(result) = VT_I4;
    V_I4(result) = method_result;
  }
  return S_OK;
}

}  // namespace com
