// The SFTP connection data a CPelicor keeps between calls (beyond the 25 methods).
#ifndef PELICOR_FACADE_SFTP_SETTINGS_H_
#define PELICOR_FACADE_SFTP_SETTINGS_H_

#include <string>

namespace facade {

struct SftpSettings {
  std::string host;  // HOST or HOST:PORT ([V6ADDR]:PORT)
  std::string user;
  std::string password;  // empty: keys only
  std::string udump;
  std::string identity;     // a private key file; empty: the SSH agent and ~/.ssh's keys
  std::string known_hosts;  // empty: ~/.ssh/known_hosts
  bool accept_new_host_key = false;
};

}  // namespace facade

#endif  // PELICOR_FACADE_SFTP_SETTINGS_H_
