// The sshd the ctest fixture "sftp_server" starts (scripts/sftp/sshd.sh), as the tests see it:
// its ports, the account, the keys and the served tree. Tests skip when PELICOR_SFTP_STATE is
// not set (the binary run without ctest).
#ifndef PELICOR_TESTS_TRANSPORT_SFTP_TEST_SERVER_H_
#define PELICOR_TESTS_TRANSPORT_SFTP_TEST_SERVER_H_

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "../support/scratch.h"

namespace pelicor_test {

class SftpServer {
 public:
  // Null when the fixture is not there.
  static const SftpServer* Get() {
    static const SftpServer* server = Load();
    return server;
  }

  // sshd itself, and the proxies that, after 256 KiB from the server, drop each connection or
  // pass nothing more on.
  int Port() const { return std::stoi(Read("port")); }
  int CuttingPort() const { return std::stoi(Read("cut.port")); }
  int StallingPort() const { return std::stoi(Read("stall.port")); }
  std::string User() const { return Read("user"); }
  std::string Password() const { return Read("password"); }
  std::string Key(const std::string& name) const { return (state_ / name).string(); }
  // "ssh-ed25519 AAAA..." of the server's host key.
  std::string HostKey() const { return PublicKey("host_key.pub"); }
  // "ssh-ed25519 SHA256:...", as messages show the host key.
  std::string HostKeyFingerprint() const { return "ssh-ed25519 " + Read("host_key.fingerprint"); }
  // "TYPE BASE64" of a public key file of the folder ("id_other.pub"), without its comment.
  std::string PublicKey(const std::string& name) const {
    const std::string line = Read(name);
    return line.substr(0, line.find(' ', line.find(' ') + 1));
  }
  // A known-hosts line for the server on `port` with `key` ("TYPE BASE64").
  static std::string KnownHostsLine(int port, const std::string& key) {
    return "[127.0.0.1]:" + std::to_string(port) + " " + key + "\n";
  }
  std::filesystem::path Served(const std::string& path) const { return state_ / "root" / path; }

 private:
  explicit SftpServer(std::filesystem::path state) : state_(std::move(state)) {}

  static const SftpServer* Load() {
    const char* state = std::getenv("PELICOR_SFTP_STATE");
    if (state == nullptr || !std::filesystem::exists(std::filesystem::path(state) / "port")) {
      return nullptr;
    }
    return new SftpServer(state);
  }
  std::string Read(const std::string& name) const { return ReadLineFile(state_ / name); }

  std::filesystem::path state_;
};

#define PELICOR_REQUIRE_SFTP_SERVER()                                                  \
  if (::pelicor_test::SftpServer::Get() == nullptr)                                    \
  GTEST_SKIP() << "no sshd: run through ctest (fixture sftp_server) or start it with " \
                  "scripts/sftp/sshd.sh start DIR and set PELICOR_SFTP_STATE=DIR"

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_TRANSPORT_SFTP_TEST_SERVER_H_
