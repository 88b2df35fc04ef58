// The operating system's own text for an error, as a user would see it from other tools.
#ifndef PELICOR_SUPPORT_OS_SYSTEM_ERROR_TEXT_H_
#define PELICOR_SUPPORT_OS_SYSTEM_ERROR_TEXT_H_

#include <string>

namespace os {

// The C library's text for the errno value `errnum` ("No such file or directory" for ENOENT).
// Thread-safe.
std::string ErrnoText(int errnum);

#ifdef _WIN32
// The system message for GetLastError(), in the user's default language, exactly as
// FormatMessageA gives it (including its line end).
std::string LastErrorText();
#endif

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_SYSTEM_ERROR_TEXT_H_
