// Copying a local file, as the platform's own file copy does it.
#ifndef PELICOR_SUPPORT_OS_FILE_COPY_H_
#define PELICOR_SUPPORT_OS_FILE_COPY_H_

#include <string>

namespace os {

// Copies `source` to `target`, replacing `target` when it exists. Returns false and, when
// `error` is given, the operating system's text for the failure; a failed copy may leave a
// partial target behind. Windows uses CopyFileA; POSIX copies the bytes and gives the target
// the source's permission bits (as far as the umask allows).
bool CopyFileOverwrite(const std::string& source, const std::string& target,
                       std::string* error = nullptr);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_FILE_COPY_H_
