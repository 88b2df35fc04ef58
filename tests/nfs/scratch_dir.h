// Real directories for the file-share tests, and the POSIX calls they need (POSIX hosts only).
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
#include <sstream>
#include <stdexcept>
#include <string>

namespace nfs_test {

namespace fs = std::filesystem;
constexpr std::time_t kJuly4 = 1088946300;  // 2004-07-04 13:05:00 UTC

inline void SetModificationTime(const fs::path& path, std::time_t mtime) {
  const timeval times[2] = {{mtime, 0}, {mtime, 0}};
  if (utimes(path.c_str(), times) != 0) throw std::runtime_error("utimes " + path.string());
}

// A fresh directory under the temporary directory, open to every user, removed with its contents.
class ScratchDir {
 public:
  ScratchDir() : path_((fs::temp_directory_path() / "pelicor_nfs_XXXXXX").string()) {
    std::string name = path_.string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
    path_ = name;
    fs::permissions(path_, fs::perms::all);
  }
  ~ScratchDir() {
    std::error_code ignored;  // the tests lock only the top directory
    fs::permissions(path_, fs::perms::owner_all, ignored);
    fs::remove_all(path_, ignored);
  }
  const fs::path& path() const { return path_; }
  std::string str() const { return path_.string(); }
  // A sparse file of `size` bytes, last modified at `mtime`.
  void AddFile(const std::string& name, std::uint64_t size, std::time_t mtime = kJuly4) const {
    std::ofstream(path_ / name).close();
    fs::resize_file(path_ / name, size);
    SetModificationTime(path_ / name, mtime);
  }

 private:
  fs::path path_;
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

inline std::string ReadWholeFile(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

}  // namespace nfs_test

#endif  // PELICOR_TESTS_NFS_SCRATCH_DIR_H_
