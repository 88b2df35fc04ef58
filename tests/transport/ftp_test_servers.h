// The FTP servers the ctest fixture "ftp_servers" starts (scripts/ftp/servers.sh), as the
// tests see them: ports, the account, the served tree and the fault server's transcripts.
// Tests skip when PELICOR_FTP_STATE is not set (the binary run without ctest).
#ifndef PELICOR_TESTS_TRANSPORT_FTP_TEST_SERVERS_H_
#define PELICOR_TESTS_TRANSPORT_FTP_TEST_SERVERS_H_

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "../support/scratch.h"

namespace pelicor_test {

class FtpServers {
 public:
  // Null when the fixture is not there.
  static const FtpServers* Get() {
    static const FtpServers* servers = Load();
    return servers;
  }

  // "127.0.0.1:PORT" of "proftpd", "pyftpdlib" or a fault scenario; `host` in place of
  // 127.0.0.1 ("localhost", the name the TLS servers' certificate has).
  std::string Address(const std::string& server, const std::string& host = "127.0.0.1") const {
    std::string port = ReadLineFile(state_ / (server + ".port"));
    if (port.empty()) port = FaultPort(server);
    return host + ":" + port;
  }
  // The self-signed certificate of the TLS servers.
  std::string Certificate() const { return (state_ / "tls.pem").string(); }
  // The account on `server` (vsftpd has its own, anonymous one), or on proftpd and pyftpdlib.
  std::string User(const std::string& server = "") const { return Account(server, "user"); }
  std::string Password(const std::string& server = "") const { return Account(server, "password"); }
  // False for a server that did not start (vsftpd without its unpacked binary).
  bool Has(const std::string& server) const {
    return std::filesystem::exists(state_ / (server + ".port"));
  }
  std::filesystem::path Served(const std::string& name) const { return state_ / "root" / name; }
  std::string Transcript(const std::string& scenario) const {
    return ReadWholeFile(state_ / "transcripts" / (scenario + ".txt"));
  }

 private:
  explicit FtpServers(std::filesystem::path state) : state_(std::move(state)) {}

  static const FtpServers* Load() {
    const char* state = std::getenv("PELICOR_FTP_STATE");
    if (state == nullptr || !std::filesystem::exists(std::filesystem::path(state) / "user")) {
      return nullptr;
    }
    return new FtpServers(state);
  }
  std::string Account(const std::string& server, const std::string& what) const {
    const std::filesystem::path own = state_ / (server + "." + what);
    return ReadLineFile(!server.empty() && std::filesystem::exists(own) ? own : state_ / what);
  }
  std::string FaultPort(const std::string& scenario) const {
    std::istringstream lines(ReadWholeFile(state_ / "fault.ports"));
    std::string name, port;
    while (lines >> name >> port) {
      if (name == scenario) return port;
    }
    return "0";
  }

  std::filesystem::path state_;
};

#define PELICOR_REQUIRE_FTP_SERVERS()                                                      \
  if (::pelicor_test::FtpServers::Get() == nullptr)                                        \
  GTEST_SKIP() << "no FTP servers: run through ctest (fixture ftp_servers) or start them " \
                  "with scripts/ftp/servers.sh start DIR and set PELICOR_FTP_STATE=DIR"

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_TRANSPORT_FTP_TEST_SERVERS_H_
