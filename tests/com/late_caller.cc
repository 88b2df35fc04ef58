#include "late_caller.h"

#include <algorithm>

namespace com_test {

HRESULT LateCaller::IdOf(const std::string& name, DISPID* id) const {
  std::wstring wide = Widen(name);
  LPOLESTR names[] = {&wide[0]};
  return object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, id);
}

HRESULT LateCaller::InvokeRaw(DISPID id, std::vector<VARIANT>& in_order, VARIANT* result,
                              UINT* bad_argument) const {
  std::vector<VARIANT> reversed(in_order.rbegin(), in_order.rend());
  DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  EXCEPINFO exception{};
  const HRESULT hr = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params,
                                     result, &exception, bad_argument);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return hr;
}

VARIANT LateCaller::NumberVariant(std::uint64_t number) {
  VARIANT value;
  VariantInit(&value);
  const unsigned form = rotation_++ % 6;
  if (number > 0x7fff || form == 5) {
    const std::wstring digits = Widen(std::to_string(number));
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = SysAllocString(digits.c_str());
  } else if (form == 0) {
    V_VT(&value) = VT_I2;
    V_I2(&value) = static_cast<SHORT>(number);
  } else if (form == 1) {
    V_VT(&value) = VT_I4;
    V_I4(&value) = static_cast<LONG>(number);
  } else if (form == 2) {
    V_VT(&value) = VT_UI2;
    V_UI2(&value) = static_cast<USHORT>(number);
  } else if (form == 3) {
    V_VT(&value) = VT_I8;
    V_I8(&value) = static_cast<LONGLONG>(number);
  } else {
    V_VT(&value) = VT_UI8;
    V_UI8(&value) = number;
  }
  return value;
}

Outcome LateCaller::Call(const std::string& method, const std::vector<Arg>& inputs) {
  Outcome outcome;
  DISPID id = 0;
  outcome.hr = IdOf(method, &id);
  if (FAILED(outcome.hr)) return outcome;
  const MethodInfo* info = FindMethod(method);
  std::vector<VARIANT> args;
  for (const Arg& input : inputs) {
    if (input.kind == Arg::kNumber) {
      args.push_back(NumberVariant(input.number));
      continue;
    }
    VARIANT text;
    VariantInit(&text);
    V_VT(&text) = VT_BSTR;
    const std::wstring wide = Widen(input.text);
    V_BSTR(&text) = input.kind == Arg::kNull
                        ? nullptr
                        : SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    args.push_back(text);
  }
  // The outputs: a script's variables (VARIANT by reference) or BSTRs by reference, in turn.
  VARIANT slots[2];
  BSTR strings[2] = {nullptr, nullptr};
  const int outs = info != nullptr && info->has_output ? 2 : 1;
  const bool as_variants = rotation_++ % 2 == 0;
  for (int i = 0; i < outs; ++i) {
    VariantInit(&slots[i]);
    VARIANT reference;
    VariantInit(&reference);
    V_VT(&reference) = as_variants ? VT_BYREF | VT_VARIANT : VT_BYREF | VT_BSTR;
    if (as_variants) {
      V_VARIANTREF(&reference) = &slots[i];
    } else {
      V_BSTRREF(&reference) = &strings[i];
    }
    args.push_back(reference);
  }
  VARIANT result;
  VariantInit(&result);
  UINT bad_argument = 0;
  const HRESULT hr = InvokeRaw(id, args, &result, &bad_argument);
  outcome.hr = FAILED(hr) ? hr : V_VT(&result) == VT_I4 ? V_I4(&result) : E_UNEXPECTED;
  for (int i = 0; i < outs; ++i) {
    BSTR text =
        as_variants ? (V_VT(&slots[i]) == VT_BSTR ? V_BSTR(&slots[i]) : nullptr) : strings[i];
    std::string& target = i + 1 == outs ? outcome.msg : outcome.output;
    target = Narrow(text, SysStringLen(text));
    VariantClear(&slots[i]);
    SysFreeString(strings[i]);
  }
  for (std::size_t i = 0; i < inputs.size(); ++i) VariantClear(&args[i]);
  VariantClear(&result);
  return outcome;
}

}  // namespace com_test
