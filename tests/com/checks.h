// Counting checks for the plain test programs: each failure is printed with what was expected,
// and the run ends with the one line "N passed, N failed".
#ifndef PELICOR_TESTS_COM_CHECKS_H_
#define PELICOR_TESTS_COM_CHECKS_H_

#include <cstdio>
#include <string>

namespace com_test {

class Checks {
 public:
  bool Expect(bool ok, const std::string& what) {
    if (ok) {
      ++passed_;
    } else {
      ++failed_;
      std::printf("FAILED: %s\n", what.c_str());
    }
    return ok;
  }
  template <typename T>
  bool ExpectEq(const T& got, const T& want, const std::string& what) {
    return Expect(got == want, what);
  }
  // Prints the summary line; the exit code of the program.
  int Report() const {
    std::printf("%d passed, %d failed\n", passed_, failed_);
    std::fflush(stdout);
    return failed_ == 0 && passed_ > 0 ? 0 : 1;
  }

 private:
  int passed_ = 0;
  int failed_ = 0;
};

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_CHECKS_H_
