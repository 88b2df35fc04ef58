#include "hosting/com/method_call.h"

namespace com {

void DescribeFailure(std::string* message, const char* text) noexcept {
  try {
    *message = text;
  } catch (...) {
    message->clear();
  }
}

HRESULT HandOut(int answer, const std::string& output, BSTR* out, const std::string& message,
                BSTR* msg) noexcept {
  *msg = NewBstr(message);
  if (out != nullptr) *out = NewBstr(output);
  if (*msg == nullptr || (out != nullptr && *out == nullptr)) {
    SysFreeString(*msg);
    *msg = nullptr;
    if (out != nullptr) {
      SysFreeString(*out);
      *out = nullptr;
    }
    return E_OUTOFMEMORY;
  }
  return answer == 0 ? S_OK : S_FALSE;
}

}  // namespace com
