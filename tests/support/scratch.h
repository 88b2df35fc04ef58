// Real files and directories for the tests, each removed with the object that made it.
#ifndef PELICOR_TESTS_SUPPORT_SCRATCH_H_
#define PELICOR_TESTS_SUPPORT_SCRATCH_H_

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

namespace pelicor_test {

inline std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

inline void WriteWholeFile(const std::filesystem::path& path, std::string_view contents) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

// A fresh directory under the temporary directory, open to every user (tests that drop their
// privileges still reach it). ctest may run test processes at once: a random name keeps them
// apart.
class ScratchDir {
 public:
  ScratchDir() {
    static std::atomic<int> counter{0};
    path_ = std::filesystem::temp_directory_path() /
            ("pelicor_" + std::to_string(std::random_device{}()) + "_" + std::to_string(counter++));
    std::filesystem::create_directories(path_);
    std::filesystem::permissions(path_, std::filesystem::perms::all);
  }
  ~ScratchDir() {
    std::error_code ignored;  // a test may have locked the directory itself
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string str() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// One file in a directory of its own, holding `contents` until written again.
class TempFile {
 public:
  explicit TempFile(std::string_view contents = {}) { Write(contents); }
  void Write(std::string_view contents) const { WriteWholeFile(path_, contents); }
  const std::string& path() const { return path_; }

 private:
  ScratchDir dir_;
  std::string path_ = dir_.File("trace.trc");
};

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_SUPPORT_SCRATCH_H_
