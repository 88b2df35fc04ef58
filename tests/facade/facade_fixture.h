// A service object over real directories: the test runs in a fresh root directory (the current
// directory, where ParseFile finds bare names and the aggregated writer puts its documents),
// with root/work as the working directory and root/udump as the file share's trace directory.
// FtpFlowsTest adds stored FTP settings that point at proftpd on 127.0.0.1 (the ctest fixture
// ftp_servers), in a served directory of the test's own, so tests running at once do not see
// each other's files.
#ifndef PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_
#define PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "../support/scratch.h"
#include "../transport/ftp_test_servers.h"
#include "facade/pelicor.h"

namespace facade_test {

namespace fs = std::filesystem;
using pelicor_test::AppendFile;
using pelicor_test::ReadWholeFile;
using pelicor_test::WriteWholeFile;

inline constexpr const char* kTrace = "orcl_ora_4242.trc";
inline constexpr const char* kXml = "orcl_ora_4242.xml";

inline std::string Fixture(const std::string& name) {
  return ReadWholeFile(fs::path(PELICOR_TEST_DATA) / name);
}

class FacadeTest : public ::testing::Test {
 private:
  pelicor_test::ScratchDir root_;  // outlives the service object
  fs::path previous_dir_ = fs::current_path();

 protected:
  FacadeTest() {
    fs::current_path(root());
    fs::create_directory(work());
    fs::create_directory(udump());
    EXPECT_EQ(service_.SetWorkingDir(work().string().c_str(), &msg_), 0);
    EXPECT_EQ(service_.NfsSetConnectInfo(udump().string().c_str(), &msg_), 0);
  }
  ~FacadeTest() override { fs::current_path(previous_dir_); }

  const fs::path& root() const { return root_.path(); }
  fs::path work() const { return root() / "work"; }
  fs::path udump() const { return root() / "udump"; }
  // The fixture trace, copied to `dir` under `name`.
  void AddTrace(const fs::path& dir, const std::string& name = kTrace) const {
    WriteWholeFile(dir / name, Fixture(kTrace));
  }
  // Which of the fixture's statements the last call-by-call document holds ("update emp+commit").
  std::string Portion() const {
    const std::string document = ReadWholeFile(work() / kXml);
    std::string found;
    for (const char* sql : {"select ename", "update emp", "commit"}) {
      if (document.find(sql) != std::string::npos)
        found += (found.empty() ? "" : "+") + std::string(sql);
    }
    return found;
  }

  facade::CPelicor service_;
  std::string msg_;
  std::string out_;
};

inline constexpr const char* kLogonFailed =
    "FTP failed to logon with the given info! Check ftp hostname/username/password.";
inline constexpr const char* kNoTraceDirectory =
    "FTP failed to change to trace directory! Check FTP qualified trace path.";

// Where a method reads its trace: a local file, the share, the FTP server.
enum Where { kLocal, kShare, kFtp };

class FtpFlowsTest : public FacadeTest {
 protected:
  void SetUp() override {
    PELICOR_REQUIRE_FTP_SERVERS();
    served_ = Servers().Served("facade-" + root().filename().string());
    fs::create_directory(served_);
    ASSERT_EQ(Connect(service_), 0);
  }
  ~FtpFlowsTest() override {
    std::error_code ignored;
    if (!served_.empty()) fs::remove_all(served_, ignored);
  }

  static const pelicor_test::FtpServers& Servers() { return *pelicor_test::FtpServers::Get(); }
  static std::string Host() { return Servers().Address("proftpd"); }
  // The test's served directory, on disk and as the account sees it.
  const fs::path& Served() const { return served_; }
  fs::path Dir(Where where) const {
    return where == kLocal ? root() : where == kShare ? udump() : served_;
  }
  std::string Udump() const { return "/" + served_.filename().string(); }
  int Connect(facade::CPelicor& service, const std::string& password = Servers().Password(),
              const std::string& udump = "") {
    return service.FtpSetConnectInfo(Host().c_str(), Servers().User().c_str(), password.c_str(),
                                     (udump.empty() ? Udump() : udump).c_str(), &msg_);
  }
  // What the FTP transport writes for a text sent in ASCII mode.
  static std::string AsciiCopy(const std::string& text) {
    std::string copy;
    for (const char c : text) copy += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return copy;
  }
  // True when an FTP call can open its session on this thread, i.e. none was left behind.
  bool FtpIsFree() {
    std::string msg;
    service_.FtpGetTraceFileList(0, &msg);
    return msg != "FTP failed to initialize!";
  }

 private:
  fs::path served_;
};

}  // namespace facade_test

#endif  // PELICOR_TESTS_FACADE_FACADE_FIXTURE_H_
