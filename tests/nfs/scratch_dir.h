// Real directories and files for the file-share tests, and the POSIX calls they need (POSIX
// hosts only).
#ifndef PELICOR_TESTS_NFS_SCRATCH_DIR_H_
#define PELICOR_TESTS_NFS_SCRATCH_DIR_H_

#include <grp.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

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
  const timeval times[2] = {{mtime, 0}, {mtime, 0}};
  if (utimes(path.c_str(), times) != 0) throw std::runtime_error("utimes " + path.string());
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

inline void SetTimeZone(const char* tz) {  // "UTC0", "EST5"
  setenv("TZ", tz, 1);
  tzset();
}

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

using pelicor_test::ReadWholeFile;

}  // namespace nfs_test

#endif  // PELICOR_TESTS_NFS_SCRATCH_DIR_H_
