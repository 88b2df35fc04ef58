// A file in the temporary directory that lives as long as the object.
#ifndef PELICOR_TESTS_PARSER_TEMP_FILE_H_
#define PELICOR_TESTS_PARSER_TEMP_FILE_H_

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

class TempFile {
 public:
  explicit TempFile(std::string_view contents = {}) {
    static std::atomic<int> counter{0};
    // ctest runs each test in a process of its own: the test's name keeps the files apart.
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "pelicor_";
    if (test != nullptr) name += std::string(test->test_suite_name()) + "_" + test->name();
    path_ =
        (std::filesystem::temp_directory_path() / (name + "_" + std::to_string(counter++) + ".trc"))
            .string();
    Write(contents);
  }
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  void Write(std::string_view contents) const {
    std::ofstream out(path_, std::ios::binary | std::ios::trunc);
    out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

#endif  // PELICOR_TESTS_PARSER_TEMP_FILE_H_
