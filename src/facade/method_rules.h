// The rules every CPelicor method follows: the message starts as "OK", a failure of the
// ExceptionBase family becomes its message text and result 1, and strings that the host may
// leave out (a null pointer) are told apart from empty ones only where the session methods
// check their arguments.
#ifndef PELICOR_FACADE_METHOD_RULES_H_
#define PELICOR_FACADE_METHOD_RULES_H_

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>

#include "support/exceptions.h"

namespace facade {

inline constexpr const char* kOk = "OK";
inline constexpr const char* kMore = "MORE";

// Runs the work of one method. `work` returns nothing (the message stays "OK") or the message
// of its success ("OK" or "MORE"). Exceptions outside the family pass through: the C ABI has
// its own catch-all.
template <typename Work>
int RunMethod(std::string* msg, Work&& work) {
  *msg = kOk;
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
      work();
    } else {
      *msg = work();
    }
    return 0;
  } catch (const exceptions::ExceptionBase& failure) {
    *msg = failure.Message();
    return 1;
  }
}

// The listing patterns handed to the transports: every trace file, and the trace files of one
// process id ("*4242.trc"); style 1 asks for the long listing.
inline constexpr const char* kAllTraceFiles = "*.trc";
inline constexpr std::uint16_t kLongListing = 1;
inline std::string TraceFilesOfPid(const std::string& pid) {
  return "*" + pid + ".trc";
}

// Runs a clean-up step whose own failure must not replace the failure being reported.
template <typename Step>
void IgnoringFailure(Step&& step) {
  try {
    step();
  } catch (const exceptions::ExceptionBase&) {
  }
}

// Runs `work`; when it fails, `session` is closed before the failure goes on to become the
// message (a failed close behind it is not reported).
template <typename Session, typename Work>
void CloseOnFailure(Session& session, Work&& work) {
  try {
    work();
  } catch (const exceptions::ExceptionBase&) {
    IgnoringFailure([&] { session.Close(); });
    throw;
  }
}

// A string argument as text; a missing one reads as empty.
inline std::string Text(const char* argument) {
  return argument ? argument : "";
}

// True when one of `arguments` is missing (null). Empty texts pass.
bool AnyMissing(std::initializer_list<const char*> arguments);

// The answer of a failed argument check: `message` in msg, result 1, nothing thrown or logged.
int RefuseArguments(const char* message, std::string* msg);

// The XML file name of a trace file name ("ora_00123.trc" -> "ora_00123.xml"); throws
// "Filename does not contain '.trc' !" for a name without ".trc" or ".TRC".
std::string XmlFileName(const std::string& trace_file_name);

// The low byte of the batch parse flags: the only bits the parser knows.
std::uint8_t BatchFlags(std::uint16_t flag);

}  // namespace facade

#endif  // PELICOR_FACADE_METHOD_RULES_H_
