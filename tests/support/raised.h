// What a call raised, as one line for whole-value comparisons.
#ifndef PELICOR_TESTS_SUPPORT_RAISED_H_
#define PELICOR_TESTS_SUPPORT_RAISED_H_

#include <string>

#include "support/exceptions.h"

namespace pelicor_test {

// "file|class|method|message" of the exception `call` raised; "" when it raised none.
template <typename Call>
std::string Raised(Call&& call) {
  try {
    call();
  } catch (const exceptions::ExceptionBase& e) {
    return e.File() + "|" + e.ClassName() + "|" + e.Method() + "|" + e.Message();
  }
  return "";
}

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_SUPPORT_RAISED_H_
