// What an SFTP session needs to know before it connects: the server, the account, how to prove
// who we are and which host keys we trust.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_OPTIONS_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_OPTIONS_H_

#include <string>
#include <string_view>

namespace transport::sftp {

struct SftpOptions {
  std::string host;  // a name, an IPv4 address or an IPv6 address without brackets
  int port = 22;
  std::string user;
  std::string udump;  // the server's trace directory, as the server names it
  // Log-on, tried in this order: the key file when given (else the SSH agent and the default
  // keys of ~/.ssh), then the password when given.
  std::string identity;
  std::string password;
  // The known-hosts file; empty: ~/.ssh/known_hosts.
  std::string known_hosts;
  // A host key the file does not know is recorded in it and trusted; a changed one never is.
  bool accept_new_host_key = false;
  int timeout_seconds = 30;
};

// Splits "HOST", "HOST:PORT", "[V6ADDR]" or "[V6ADDR]:PORT" into `options`' host and port
// (22 when none is given). False, with `options` unchanged, for an empty host, a port that is
// not a number from 1 to 65535, or a bare IPv6 address with a port (ambiguous).
bool SetHostAndPort(std::string_view text, SftpOptions* options);

// "HOST" or "HOST:PORT" (brackets around an IPv6 address) for messages; no port when it is 22.
std::string DisplayAddress(const SftpOptions& options);

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_OPTIONS_H_
