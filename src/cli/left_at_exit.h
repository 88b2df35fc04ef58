// The command's large objects that live until it ends (a parsed trace holds a record for each
// of its statements, millions in a large trace) are not taken apart one allocation at a time
// just before the process ends and the system takes back all its memory at once: that cost a
// tenth of a report's time. Compilers do the same with their syntax trees (clang's -disable-free).
// Builds that check for leaks (AddressSanitizer's leak checker) destroy them as usual, so a real
// leak still shows in the tests.
#ifndef PELICOR_CLI_LEFT_AT_EXIT_H_
#define PELICOR_CLI_LEFT_AT_EXIT_H_

#include <memory>

#if defined(__SANITIZE_ADDRESS__)
#define PELICOR_CHECKS_LEAKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELICOR_CHECKS_LEAKS 1
#endif
#endif

namespace cli {

// Ends `object`'s life with the process's: call it only once nothing of the object is needed
// any more and it holds no resource but memory (no open file, socket or thread).
template <typename T>
void LeaveAtExit(std::unique_ptr<T> object) {
#if defined(PELICOR_CHECKS_LEAKS)
  object.reset();
#else
  static_cast<void>(object.release());
#endif
}

}  // namespace cli

#endif  // PELICOR_CLI_LEFT_AT_EXIT_H_
