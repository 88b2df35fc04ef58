// The frame every IPelicor method runs in: out pointers checked (E_POINTER before any work), the
// service called under a catch-all so that no C++ exception reaches the caller, and msg (and the
// one other output, where the method has one) handed out as new BSTRs, also after a failure.
// Result: S_OK when the service answered 0, S_FALSE when it answered 1 (its message in msg),
// E_OUTOFMEMORY when an output string could not be allocated.
#ifndef PELICOR_HOSTING_COM_METHOD_CALL_H_
#define PELICOR_HOSTING_COM_METHOD_CALL_H_

#include <windows.h>

#include <exception>
#include <string>

#include "hosting/com/bstr_text.h"
#include "support/exceptions.h"

namespace com {

// Sets `message` to `text` without letting an allocation failure out.
void DescribeFailure(std::string* message, const char* text) noexcept;
// Hands out `output` (when `out` is not null) and `message` as new BSTRs; the result for the
// caller from the service's answer.
HRESULT HandOut(int answer, const std::string& output, BSTR* out, const std::string& message,
                BSTR* msg) noexcept;

// `work(&output, &message)` calls the service and returns its answer (0 or 1). `out` is null for
// the methods whose only output is msg.
template <typename Work>
HRESULT RunMethod(BSTR* out, BSTR* msg, bool has_output, Work&& work) noexcept {
  if (msg == nullptr || (has_output && out == nullptr)) return E_POINTER;
  *msg = nullptr;
  if (out != nullptr) *out = nullptr;
  std::string output;
  std::string message;
  int answer = 1;
  try {
    answer = work(&output, &message);
  } catch (const exceptions::ExceptionBase& failure) {
    answer = 1;
    try {
      message = failure.Message();
    } catch (...) {
      message.clear();
    }
  } catch (const std::exception& failure) {
    answer = 1;
    DescribeFailure(&message, failure.what());
  } catch (...) {
    answer = 1;
    DescribeFailure(&message, "pelicor: unknown failure");
  }
  return HandOut(answer, output, out, message, msg);
}

}  // namespace com

#endif  // PELICOR_HOSTING_COM_METHOD_CALL_H_
