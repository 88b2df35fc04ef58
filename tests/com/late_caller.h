// Calls through IDispatch alone (late binding): the id from GetIDsOfNames, the arguments as
// VARIANTs. Numbers and out parameters rotate through the forms callers use (VT_I2, VT_I4,
// VT_UI2, VT_I8, VT_UI8, VT_BSTR digits; VT_BYREF|VT_VARIANT and VT_BYREF|VT_BSTR), so every
// coercion is met across a run.
#ifndef PELICOR_TESTS_COM_LATE_CALLER_H_
#define PELICOR_TESTS_COM_LATE_CALLER_H_

#include "calls.h"

namespace com_test {

class LateCaller final : public Caller {
 public:
  explicit LateCaller(IDispatch* object) : object_(object) {}
  // hr is Invoke's failure, or else the method's 0/1 (returned as VT_I4) as S_OK/S_FALSE.
  Outcome Call(const std::string& method, const std::vector<Arg>& inputs) override;

  // The id GetIDsOfNames gives for `name`, or its failure.
  HRESULT IdOf(const std::string& name, DISPID* id) const;
  // Invoke with the given VARIANTs in parameter order (reversed here as IDispatch wants them).
  HRESULT InvokeRaw(DISPID id, std::vector<VARIANT>& in_order, VARIANT* result,
                    UINT* bad_argument) const;

 private:
  VARIANT NumberVariant(std::uint64_t number);

  IDispatch* object_;
  unsigned rotation_ = 0;
};

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_LATE_CALLER_H_
