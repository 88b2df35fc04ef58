// A service object whose stored FTP settings point at proftpd on 127.0.0.1 (the ctest fixture
// ftp_servers), in a served directory of the test's own, so tests running at once do not see
// each other's files.
#ifndef PELICOR_TESTS_FACADE_FTP_FIXTURE_H_
#define PELICOR_TESTS_FACADE_FTP_FIXTURE_H_

#include <string>

#include "facade_fixture.h"
#include "ftp_test_servers.h"

namespace facade_test {

inline constexpr const char* kLogonFailed =
    "FTP failed to logon with the given info! Check ftp hostname/username/password.";
inline constexpr const char* kNoTraceDirectory =
    "FTP failed to change to trace directory! Check FTP qualified trace path.";

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
  // The test's served directory as the account sees it.
  std::string Udump() const { return "/" + served_.filename().string(); }
  int Connect(facade::CPelicor& service, const std::string& password = Servers().Password(),
              const std::string& udump = "") {
    return service.FtpSetConnectInfo(Host().c_str(), Servers().User().c_str(), password.c_str(),
                                     (udump.empty() ? Udump() : udump).c_str(), &msg_);
  }
  void Serve(const std::string& name, const std::string& text) const {
    WriteFile(served_ / name, text);
  }
  void AppendServed(const std::string& name, const std::string& text) const {
    AppendFile(served_ / name, text);
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

#endif  // PELICOR_TESTS_FACADE_FTP_FIXTURE_H_
