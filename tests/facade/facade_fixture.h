// A service object over real directories: the test runs in a fresh root directory (the current
// directory, where ParseFile finds bare names and the aggregated writer puts its documents),
// with root/work as the working directory and root/udump as the file share's trace directory.
#ifndef PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_
#define PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "facade/pelicor.h"

namespace facade_test {

namespace fs = std::filesystem;

inline constexpr const char* kTrace = "orcl_ora_4242.trc";
inline constexpr const char* kXml = "orcl_ora_4242.xml";

inline std::string ReadFile(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

inline void WriteFile(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

inline void AppendFile(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::app) << text;
}

inline std::string Fixture(const std::string& name) {
  return ReadFile(fs::path(PELICOR_TEST_DATA) / name);
}

class FacadeTest : public ::testing::Test {
 protected:
  FacadeTest() {
    std::string name = (fs::temp_directory_path() / "pelicor_facade_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
    root_ = name;
    previous_dir_ = fs::current_path();
    fs::current_path(root_);
    fs::create_directory(work());
    fs::create_directory(udump());
    EXPECT_EQ(service_.SetWorkingDir(work().c_str(), &msg_), 0);
    EXPECT_EQ(service_.NfsSetConnectInfo(udump().c_str(), &msg_), 0);
  }
  ~FacadeTest() override {
    fs::current_path(previous_dir_);
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }

  const fs::path& root() const { return root_; }
  fs::path work() const { return root_ / "work"; }
  fs::path udump() const { return root_ / "udump"; }
  // The fixture trace, copied to `dir` under `name`.
  void AddTrace(const fs::path& dir, const std::string& name = kTrace) const {
    WriteFile(dir / name, Fixture(kTrace));
  }

  facade::CPelicor service_;
  std::string msg_;
  std::string out_;

 private:
  fs::path root_;
  fs::path previous_dir_;
};

}  // namespace facade_test

#endif  // PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_
