#include "support/os/file_copy.h"

#include <utility>

#include "support/os/pending_file.h"
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
  PendingFile to;  // the copy takes the target's name only when complete
  std::string reason;
  if (!to.Create(target, &reason)) return Fail(error, std::move(reason));
  CloseFile(to.ReleaseHandle());  // CopyFileA writes the temporary file by its name
  if (!CopyFileA(source.c_str(), to.path().c_str(), FALSE)) return Fail(error, LastErrorText());
  if (!to.Commit(&reason)) return Fail(error, std::move(reason));
  return true;
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

 private:
  int fd_;
};

bool CopyBytes(int from, PendingFile& to, std::string* error) {
  std::vector<char> buffer(1 << 20);
  for (;;) {
    const ssize_t got = read(from, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return Fail(error, ErrnoText(errno));
    if (got == 0) return true;
    std::string reason;
    if (!to.Write(buffer.data(), static_cast<std::size_t>(got), &reason)) {
      return Fail(error, std::move(reason));
    }
  }
}

bool SameFile(const std::string& target, const struct stat& source) {
  struct stat info {};
  return stat(target.c_str(), &info) == 0 && info.st_dev == source.st_dev &&
         info.st_ino == source.st_ino;
}

}  // namespace

bool CopyFileOverwrite(const std::string& source, const std::string& target, std::string* error) {
  // O_NONBLOCK: a FIFO would otherwise wait for a writer here; it is refused below.
  Fd from(open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat from_info {};
  if (from.get() < 0 || fstat(from.get(), &from_info) != 0) return Fail(error, ErrnoText(errno));
  if (S_ISDIR(from_info.st_mode)) return Fail(error, ErrnoText(EISDIR));
  if (!S_ISREG(from_info.st_mode)) return Fail(error, "not a regular file");
  fcntl(from.get(), F_SETFL, fcntl(from.get(), F_GETFL) & ~O_NONBLOCK);
  // Copying a file onto itself must fail, as the platform's copy does, not empty it.
  if (SameFile(target, from_info)) return Fail(error, ErrnoText(EINVAL));
  PendingFile to;  // the copy takes the target's name only when complete
  std::string reason;
  if (!to.Create(target, &reason)) return Fail(error, std::move(reason));
  if (!CopyBytes(from.get(), to, error)) return false;
  if (!to.Commit(&reason)) return Fail(error, std::move(reason));
  return true;
}

#endif

}  // namespace os
