// Calls through the vtable of IPelicor as declared by the widl header (early binding).
#ifndef PELICOR_TESTS_COM_EARLY_CALLER_H_
#define PELICOR_TESTS_COM_EARLY_CALLER_H_

#include "calls.h"
#include "pelicor_idl.h"

namespace com_test {

class EarlyCaller final : public Caller {
 public:
  explicit EarlyCaller(IPelicor* object) : object_(object) {}
  Outcome Call(const std::string& method, const std::vector<Arg>& inputs) override;
  // The same call with the output and/or msg pointer null: the HRESULT alone.
  HRESULT CallWithNullOuts(const std::string& method, const std::vector<Arg>& inputs,
                           bool null_output, bool null_msg);

 private:
  IPelicor* object_;
};

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_EARLY_CALLER_H_
