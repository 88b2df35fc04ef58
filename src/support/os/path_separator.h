// The separator that joins a directory and a name in local paths: '\' on Windows, '/' elsewhere.
#ifndef PELICOR_SUPPORT_OS_PATH_SEPARATOR_H_
#define PELICOR_SUPPORT_OS_PATH_SEPARATOR_H_

namespace os {

#ifdef _WIN32
inline constexpr char kPathSeparator = '\\';
#else
inline constexpr char kPathSeparator = '/';
#endif

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_PATH_SEPARATOR_H_
