#include "support/os/file_handle.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace os {
namespace {

#ifdef _WIN32
constexpr int kBinary = _O_BINARY;
constexpr int kNoInherit = _O_NOINHERIT;
constexpr int kMode = _S_IREAD | _S_IWRITE;
int OpenNative(const char* path, int flags, int mode) {
  return _open(path, flags, mode);
}
#else
constexpr int kBinary = 0;
constexpr int kNoInherit = O_CLOEXEC;
constexpr int kMode = 0644;
int OpenNative(const char* path, int flags, int mode) {
  return open(path, flags, static_cast<mode_t>(mode));
}
#endif

FileHandle Open(const std::string& path, int flags) {
  const int file = OpenNative(path.c_str(), flags | kBinary | kNoInherit, kMode);
  return file < 0 ? kNoFile : file;
}

}  // namespace

FileHandle CreateFileForWrite(const std::string& path) {
  return Open(path, O_WRONLY | O_CREAT | O_TRUNC);
}

FileHandle OpenFileForRead(const std::string& path) {
  return Open(path, O_RDONLY);
}

FileHandle OpenFileForAppend(const std::string& path) {
  return Open(path, O_WRONLY | O_CREAT | O_APPEND);
}

std::ptrdiff_t WriteToFile(FileHandle file, const char* data, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
#ifdef _WIN32
    const unsigned chunk =
        static_cast<unsigned>(size - done > 0x40000000 ? 0x40000000 : size - done);
    const int wrote = _write(static_cast<int>(file), data + done, chunk);
#else
    const ssize_t wrote = write(static_cast<int>(file), data + done, size - done);
    if (wrote < 0 && errno == EINTR) continue;
#endif
    if (wrote <= 0) return done > 0 ? static_cast<std::ptrdiff_t>(done) : -1;
    done += static_cast<std::size_t>(wrote);
  }
  return static_cast<std::ptrdiff_t>(done);
}

bool CloseFile(FileHandle file) {
#ifdef _WIN32
  return _close(static_cast<int>(file)) == 0;
#else
  return close(static_cast<int>(file)) == 0;
#endif
}

std::string LastFileErrorText() {
  return std::strerror(errno);
}

}  // namespace os
