#include "support/os/file_copy.h"

#include <utility>

#include "support/os/system_error_text.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>
#endif

namespace os {

namespace {
bool Fail(std::string* error, std::string text) {
  if (error != nullptr) *error = std::move(text);
  return false;
}
}  // namespace

#ifdef _WIN32

bool CopyFileOverwrite(const std::string& source, const std::string& target, std::string* error) {
  if (CopyFileA(source.c_str(), target.c_str(), FALSE)) return true;
  return Fail(error, LastErrorText());
}

#else

namespace {

class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  ~Fd() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const { return fd_; }
  // Closes now and reports, so a failed flush of the target is not lost.
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return close(fd) == 0;
  }

 private:
  int fd_;
};

bool WriteAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t written = write(fd, data, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    data += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool CopyBytes(int from, int to, std::string* error) {
  std::vector<char> buffer(1 << 20);
  for (;;) {
    const ssize_t got = read(from, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return Fail(error, ErrnoText(errno));
    if (got == 0) return true;
    if (!WriteAll(to, buffer.data(), static_cast<std::size_t>(got))) {
      return Fail(error, ErrnoText(errno));
    }
  }
}

}  // namespace

bool CopyFileOverwrite(const std::string& source, const std::string& target, std::string* error) {
  Fd from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat from_info {};
  if (from.get() < 0 || fstat(from.get(), &from_info) != 0) return Fail(error, ErrnoText(errno));
  // Not O_TRUNC yet: copying a file onto itself must fail, not empty it.
  Fd to(open(target.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, from_info.st_mode & 0777));
  struct stat to_info {};
  if (to.get() < 0 || fstat(to.get(), &to_info) != 0) return Fail(error, ErrnoText(errno));
  if (to_info.st_dev == from_info.st_dev && to_info.st_ino == from_info.st_ino) {
    return Fail(error, ErrnoText(EINVAL));
  }
  if (ftruncate(to.get(), 0) != 0) return Fail(error, ErrnoText(errno));
  if (!CopyBytes(from.get(), to.get(), error)) return false;
  if (!to.Close()) return Fail(error, ErrnoText(errno));
  return true;
}

#endif

}  // namespace os
