// Real directories and files for the file-share tests, and the platform calls they need.
#ifndef PELICOR_TESTS_NFS_SCRATCH_DIR_H_
#define PELICOR_TESTS_NFS_SCRATCH_DIR_H_

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <grp.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include "../support/scratch.h"

namespace nfs_test {

namespace fs = std::filesystem;
constexpr std::time_t kJuly4 = 1088946300;  // 2004-07-04 13:05:00 UTC

inline void SetModificationTime(const fs::path& path, std::time_t mtime) {
#ifdef _WIN32
  // The C run-time's _utime opens files only: a directory needs the backup-semantics flag.
  const HANDLE file = CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  // 100 ns ticks since 1601-01-01.
  const ULONGLONG ticks = (static_cast<ULONGLONG>(mtime) + 11644473600ULL) * 10000000ULL;
  const FILETIME when{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  const bool set = file != INVALID_HANDLE_VALUE && SetFileTime(file, nullptr, &when, &when);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  if (!set) throw std::runtime_error("SetFileTime " + path.string());
#else
  const timeval times[2] = {{mtime, 0}, {mtime, 0}};
  if (utimes(path.c_str(), times) != 0) throw std::runtime_error("utimes " + path.string());
#endif
}

// A scratch directory that also makes sparse trace files.
struct ScratchDir : pelicor_test::ScratchDir {
  // A file of `size` bytes, last modified at `mtime`.
  void AddFile(const std::string& name, std::uint64_t size, std::time_t mtime = kJuly4) const {
    std::ofstream(path() / name).close();
    fs::resize_file(path() / name, size);
    SetModificationTime(path() / name, mtime);
  }
};

// Puts this process in the time zone `tz` ("UTC0", "EST5"); false where it cannot. Windows
// converts file times with the system's zone, fixed when the process starts (under Wine: the
// host's TZ, which the test run sets to UTC0), so there it only tells whether `tz` is in force.
inline bool SetTimeZone(const char* tz) {
#ifdef _WIN32
  const char* current = std::getenv("TZ");
  return current != nullptr && std::string(current) == tz;
#else
  setenv("TZ", tz, 1);
  tzset();
  return true;
#endif
}

#ifndef _WIN32
// Runs `check` in a child that drops to nobody when we are root, in this process otherwise.
inline bool RunUnprivileged(const std::function<bool()>& check) {
  if (geteuid() != 0) return check();
  const pid_t child = fork();
  if (child == 0) {
    const bool dropped = setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
    _exit(dropped && check() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}
#endif

using pelicor_test::ReadWholeFile;

}  // namespace nfs_test

#endif  // PELICOR_TESTS_NFS_SCRATCH_DIR_H_
