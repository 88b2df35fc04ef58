// Real files and directories for the tests, each removed with the object that made it.
#ifndef PELICOR_TESTS_SUPPORT_SCRATCH_H_
#define PELICOR_TESTS_SUPPORT_SCRATCH_H_

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace pelicor_test {

inline std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// Documents, reports, listings and the activity log are written in text mode: their lines end in
// CR LF on Windows and in LF elsewhere. Expected texts in the tests are written with LF.
#ifdef _WIN32
inline constexpr std::string_view kLineEnd = "\r\n";
#else
inline constexpr std::string_view kLineEnd = "\n";
#endif

// `text` with each LF written as the platform's line end, as a text-mode write leaves it.
inline std::string NativeLineEnds(std::string_view text) {
  std::string native;
  for (const char c : text) {
    if (c == '\n') {
      native += kLineEnd;
    } else {
      native += c;
    }
  }
  return native;
}

// A file written in text mode, read back with LF line ends, so that one expected text serves
// every platform. On Windows each CR LF becomes LF; a LF without its CR stays marked as
// "<LF without CR>", so a comparison shows where the platform's line end is missing.
inline std::string ReadTextFile(const std::filesystem::path& path) {
  const std::string native = ReadWholeFile(path);
  if (kLineEnd == "\n") return native;
  std::string text;
  for (std::size_t i = 0; i < native.size(); ++i) {
    if (native.compare(i, 2, "\r\n") == 0) {
      text += '\n';
      ++i;
    } else if (native[i] == '\n') {
      text += "<LF without CR>\n";
    } else {
      text += native[i];
    }
  }
  return text;
}

inline void WriteWholeFile(const std::filesystem::path& path, std::string_view contents) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

inline void AppendFile(const std::filesystem::path& path, std::string_view text) {
  std::ofstream(path, std::ios::binary | std::ios::app)
      .write(text.data(), static_cast<std::streamsize>(text.size()));
}

// A file of one line (a port, a user name) without its line end.
inline std::string ReadLineFile(const std::filesystem::path& path) {
  std::string text = ReadWholeFile(path);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

// The names in `dir`, sorted: what a test left or a call wrote there.
inline std::vector<std::string> FileNames(const std::filesystem::path& dir) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Where scratch directories go. Under Wine that is the host's /tmp reached as Z:\tmp, so the
// Windows build works on real host folders through Wine's drive mapping, as a share is reached.
inline std::filesystem::path ScratchRoot() {
#ifdef _WIN32
  std::error_code ignored;
  const std::filesystem::path host_tmp = "Z:\\tmp";
  if (std::filesystem::is_directory(host_tmp, ignored)) return host_tmp;
#endif
  return std::filesystem::temp_directory_path();
}

// A fresh directory under the temporary directory, open to every user (tests that drop their
// privileges still reach it). ctest may run test processes at once: a random name keeps them
// apart.
class ScratchDir {
 public:
  ScratchDir() {
    static std::atomic<int> counter{0};
    path_ = ScratchRoot() /
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
