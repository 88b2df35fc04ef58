#include "support/os/system_error_text.h"

#include <cstring>

#ifdef _WIN32
#include <windows.h>
#endif

namespace os {

namespace {
// strerror_r comes in two shapes: XSI returns an int and fills the buffer, GNU returns the text
// (which may or may not be the buffer). Overloads pick whichever the C library declares.
[[maybe_unused]] const char* PickText(int result, const char* buffer) {
  return result == 0 ? buffer : "Unknown error";
}
[[maybe_unused]] const char* PickText(const char* text, const char*) {
  return text;
}
}  // namespace

std::string ErrnoText(int errnum) {
  char buffer[256] = {};
#ifdef _WIN32
  if (strerror_s(buffer, sizeof buffer, errnum) != 0) return "Unknown error";
  return buffer;
#else
  return PickText(strerror_r(errnum, buffer, sizeof buffer), buffer);
#endif
}

#ifdef _WIN32
std::string LastErrorText() {
  const DWORD code = GetLastError();
  char* text = nullptr;
  const DWORD length = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPSTR>(&text), 0,
      nullptr);
  if (length == 0 || text == nullptr) return "Unknown error " + std::to_string(code);
  std::string result(text, length);
  LocalFree(text);
  return result;
}
#endif

}  // namespace os
