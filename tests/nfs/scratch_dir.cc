#include "scratch_dir.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace nfs_test {

namespace fs = std::filesystem;

ScratchDir::ScratchDir() {
  std::string pattern = (fs::temp_directory_path() / "pelicor_nfs_XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
  fs::permissions(path_, fs::perms::all);
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  fs::permissions(path_, fs::perms::owner_all, ignored);
  for (const auto& entry : fs::recursive_directory_iterator(path_, ignored)) {
    if (entry.is_directory(ignored)) fs::permissions(entry.path(), fs::perms::owner_all, ignored);
  }
  fs::remove_all(path_, ignored);
}

void ScratchDir::AddFile(const std::string& name, std::uint64_t size, std::time_t mtime) const {
  const fs::path file = path_ / name;
  std::ofstream(file).close();
  fs::resize_file(file, size);
  SetModificationTime(file, mtime);
}

void SetModificationTime(const fs::path& path, std::time_t mtime) {
  const timeval times[2] = {{mtime, 0}, {mtime, 0}};
  if (utimes(path.c_str(), times) != 0) throw std::runtime_error("utimes failed");
}

void SetTimeZone(const char* tz) {
  setenv("TZ", tz, 1);
  tzset();
}

bool RunUnprivileged(const std::function<bool()>& check) {
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

std::string ReadWholeFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace nfs_test
