// Real directories for the file-share tests, and the few POSIX calls the tests need (these tests
// run on POSIX hosts only).
#ifndef PELICOR_TESTS_NFS_SCRATCH_DIR_H_
#define PELICOR_TESTS_NFS_SCRATCH_DIR_H_

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>

namespace nfs_test {

// 2004-07-04 13:05:00 UTC.
constexpr std::time_t kJuly4 = 1088946300;

// A fresh directory under the system's temporary directory, open to every user (so an
// unprivileged child can reach what the test makes inside it), removed with all its contents.
class ScratchDir {
 public:
  ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  ~ScratchDir();
  const std::filesystem::path& path() const { return path_; }
  std::string str() const { return path_.string(); }
  // Creates `name` with `size` bytes (a sparse file, so gigabytes cost nothing) and sets its
  // modification time.
  void AddFile(const std::string& name, std::uint64_t size, std::time_t mtime = kJuly4) const;

 private:
  std::filesystem::path path_;
};

void SetModificationTime(const std::filesystem::path& path, std::time_t mtime);

// Switches the process's local time zone ("UTC0", "EST5").
void SetTimeZone(const char* tz);

// Runs `check` as an ordinary user: in a child process that drops to nobody when the test runs
// as root, in this process otherwise. Returns what `check` returned.
bool RunUnprivileged(const std::function<bool()>& check);

std::string ReadWholeFile(const std::filesystem::path& path);

}  // namespace nfs_test

#endif  // PELICOR_TESTS_NFS_SCRATCH_DIR_H_
