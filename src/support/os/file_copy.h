// Copying a local file, as the platform's own file copy does it.
#ifndef PELICOR_SUPPORT_OS_FILE_COPY_H_
#define PELICOR_SUPPORT_OS_FILE_COPY_H_

#include <string>

namespace os {

// Copies `source` to `target`, replacing `target` when it exists. Returns false and, when
// `error` is given, the operating system's text for the failure. Windows uses CopyFileA; POSIX
// copies the bytes under a temporary name beside the target and renames it when complete (a
// failed copy leaves the target as it was, os::PendingFile), and refuses a source that is not
// a regular file (a directory, a FIFO) before creating anything.
bool CopyFileOverwrite(const std::string& source, const std::string& target,
                       std::string* error = nullptr);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_FILE_COPY_H_
