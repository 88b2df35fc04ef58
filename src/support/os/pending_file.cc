#include "support/os/pending_file.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "support/os/system_error_text.h"
#include "support/os/termination.h"

namespace os {

namespace {

enum class Kind { kMissing, kRegular, kDirectory, kOther };

struct Target {
  Kind kind = Kind::kMissing;
  int mode = 0644;  // permission bits of an existing regular file
  int error = 0;    // errno of a failed look-up other than "not there"
};

#ifdef _WIN32

Target LookUp(const std::string& path) {
  Target target;
  struct _stat64 info {};
  if (_stat64(path.c_str(), &info) != 0) {
    if (errno != ENOENT) target.error = errno;
    return target;
  }
  if ((info.st_mode & _S_IFDIR) != 0) {
    target.kind = Kind::kDirectory;
  } else {
    target.kind = (info.st_mode & _S_IFREG) != 0 ? Kind::kRegular : Kind::kOther;
  }
  return target;
}

FileHandle OpenWith(const std::string& path, int flags) {
  const int file = _open(path.c_str(), flags | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
  return file < 0 ? kNoFile : file;
}

FileHandle CreateExclusive(const std::string& path, int /*mode*/) {
  return OpenWith(path, _O_WRONLY | _O_CREAT | _O_EXCL);
}

FileHandle OpenExisting(const std::string& path) {
  return OpenWith(path, _O_WRONLY);
}

bool RenameReplacing(const std::string& from, const std::string& to, std::string* error) {
  if (MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  *error = LastErrorText();
  return false;
}

#else

Target LookUp(const std::string& path) {
  Target target;
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) {
    // A link that points nowhere is replaced like a missing file.
    if (errno != ENOENT) target.error = errno;
    return target;
  }
  if (S_ISDIR(info.st_mode)) {
    target.kind = Kind::kDirectory;
  } else if (S_ISREG(info.st_mode)) {
    target.kind = Kind::kRegular;
    target.mode = static_cast<int>(info.st_mode & 07777);
  } else {
    target.kind = Kind::kOther;
  }
  return target;
}

FileHandle CreateExclusive(const std::string& path, int mode) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (file < 0) return kNoFile;
  // A replaced document keeps the permissions it had.
  if (mode != 0644) static_cast<void>(fchmod(file, static_cast<mode_t>(mode)));
  return file;
}

FileHandle OpenExisting(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  return file < 0 ? kNoFile : file;
}

bool RenameReplacing(const std::string& from, const std::string& to, std::string* error) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return true;
  *error = ErrnoText(errno);
  return false;
}

#endif

std::uint32_t RandomTag(int attempt) {
  std::uint64_t value =
      static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  try {
    value ^= std::random_device{}();
  } catch (...) {
    // the clock alone still tells attempts apart
  }
  value = value * 6364136223846793005u + static_cast<std::uint64_t>(attempt);
  return static_cast<std::uint32_t>(value >> 32);
}

std::string TemporaryName(const std::string& target, int attempt) {
  char tag[16];
  std::snprintf(tag, sizeof tag, "%08x", static_cast<unsigned>(RandomTag(attempt)));
  return target + ".pelicor-" + tag + ".tmp";
}

}  // namespace

PendingFile::~PendingFile() {
  Discard();
}

bool PendingFile::Create(const std::string& target, std::string* error) {
  Discard();
  target_ = target;
  const Target found = LookUp(target);
  if (found.error != 0) {
    *error = ErrnoText(found.error);
    return false;
  }
  if (found.kind == Kind::kDirectory) {
    *error = ErrnoText(EISDIR);
    return false;
  }
  if (found.kind == Kind::kOther) {
    path_ = target;
    handle_ = OpenExisting(target);
  } else {
    for (int attempt = 0; attempt < 16 && handle_ == kNoFile; ++attempt) {
      path_ = TemporaryName(target, attempt);
      handle_ = CreateExclusive(path_, found.mode);
      if (handle_ == kNoFile && errno != EEXIST) break;
    }
    pending_ = handle_ != kNoFile;
    if (pending_) RemoveOnTermination(path_);  // an interrupted command leaves no half file
  }
  if (handle_ == kNoFile) {
    *error = LastFileErrorText();
    return false;
  }
  return true;
}

bool PendingFile::Write(const char* data, std::size_t size, std::string* error) {
  if (size == 0) return true;
  errno = 0;
  if (WriteToFile(handle_, data, size) == static_cast<std::ptrdiff_t>(size)) return true;
  // A short write without an error code is a full disk that took part of the block.
  *error = errno != 0 ? LastFileErrorText() : ErrnoText(ENOSPC);
  return false;
}

FileHandle PendingFile::ReleaseHandle() {
  const FileHandle handle = handle_;
  handle_ = kNoFile;
  return handle;
}

bool PendingFile::Commit(std::string* error) {
  if (handle_ != kNoFile) {
    const FileHandle handle = ReleaseHandle();
    if (!CloseFile(handle)) {
      *error = LastFileErrorText();
      Discard();
      return false;
    }
  }
  if (!pending_) return true;
  if (!RenameReplacing(path_, target_, error)) {
    Discard();
    return false;
  }
  pending_ = false;
  ForgetOnTermination(path_);
  return true;
}

void PendingFile::Discard() {
  if (handle_ != kNoFile) CloseFile(ReleaseHandle());
  if (pending_) {
    std::remove(path_.c_str());
    ForgetOnTermination(path_);
  }
  pending_ = false;
}

std::string RegularFileProblem(const std::string& path) {
#ifdef _WIN32
  struct _stat64 info {};
  if (_stat64(path.c_str(), &info) != 0) return ErrnoText(errno);
  if ((info.st_mode & _S_IFDIR) != 0) return ErrnoText(EISDIR);
  if ((info.st_mode & _S_IFREG) == 0) return "not a regular file";
  const int file = _open(path.c_str(), _O_RDONLY | _O_BINARY);
  if (file < 0) return ErrnoText(errno);
  _close(file);
  return {};
#else
  // O_NONBLOCK: opening a FIFO for reading would wait for a writer.
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return ErrnoText(errno);
  struct stat info {};
  const int status = fstat(file, &info);
  const int saved = errno;
  close(file);
  if (status != 0) return ErrnoText(saved);
  if (S_ISDIR(info.st_mode)) return ErrnoText(EISDIR);
  if (!S_ISREG(info.st_mode)) return "not a regular file";
  return {};
#endif
}

}  // namespace os
