// What the tests need to know of the platform they run on: the operating system's own texts for
// the failures they provoke, as the platform layer hands them on (strerror on POSIX,
// FormatMessageA with its line end on Windows, whose texts differ between Windows, Wine and
// languages), and whether the Windows build runs under Wine.
#ifndef PELICOR_TESTS_SUPPORT_PLATFORM_H_
#define PELICOR_TESTS_SUPPORT_PLATFORM_H_

#include <string>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cerrno>
#include <cstring>
#endif

namespace pelicor_test {

#ifdef _WIN32
inline std::string SystemText(DWORD code) {
  char text[512] = {};
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                     MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof text, nullptr);
  return std::string(text, length);
}
#endif

// A search or copy whose file is missing (ERROR_FILE_NOT_FOUND, ENOENT).
inline std::string NoSuchFileText() {
#ifdef _WIN32
  return SystemText(ERROR_FILE_NOT_FOUND);
#else
  return std::strerror(ENOENT);
#endif
}

// A search in a directory that is missing (ERROR_PATH_NOT_FOUND, ENOENT).
inline std::string NoSuchDirectoryText() {
#ifdef _WIN32
  return SystemText(ERROR_PATH_NOT_FOUND);
#else
  return std::strerror(ENOENT);
#endif
}

// True for the Windows build running under Wine (its ntdll exports wine_get_version).
inline bool UnderWine() {
#ifdef _WIN32
  const HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

// A connection reset that arrives while no receive is pending (the client polled first, or was
// busy): Wine's server takes the socket's error while polling, and the next recv sees an orderly
// end of stream instead of WSAECONNRESET.
inline constexpr const char* kWineLosesResets =
    "Wine reports a connection reset that arrives before the receive as an orderly end";

}  // namespace pelicor_test

// Skips a test that Wine cannot run as Windows would, saying why.
#define PELICOR_SKIP_UNDER_WINE(reason) \
  if (::pelicor_test::UnderWine()) GTEST_SKIP() << "not under Wine: " << (reason)

#endif  // PELICOR_TESTS_SUPPORT_PLATFORM_H_
