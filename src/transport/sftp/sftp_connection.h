// One logged-on SSH session with its SFTP channel, over libssh. Internal to the transport: only
// its .cc files see libssh.
//
// Opening connects within the time-out, checks the server's host key against the known-hosts
// file, logs on and starts the file service; any step that fails throws ExceptionBase with a
// message that names the server and says what went wrong. The destructor disconnects and
// never throws. Not thread-safe: one thread uses a connection at a time.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_CONNECTION_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_CONNECTION_H_

#include <libssh/libssh.h>
#include <libssh/sftp.h>

#include <memory>
#include <string>

#include "transport/sftp/sftp_options.h"
#include "transport/sftp/sftp_watchdog.h"

namespace transport::sftp {

struct SshSessionFree {
  void operator()(ssh_session session) const noexcept;
};
struct SftpSessionFree {
  void operator()(sftp_session sftp) const noexcept { sftp_free(sftp); }
};
struct SftpFileClose {
  void operator()(sftp_file file) const noexcept { sftp_close(file); }
};
struct SftpDirClose {
  void operator()(sftp_dir dir) const noexcept { sftp_closedir(dir); }
};
struct SftpAttributesFree {
  void operator()(sftp_attributes attributes) const noexcept { sftp_attributes_free(attributes); }
};
struct SshKeyFree {
  void operator()(ssh_key key) const noexcept { ssh_key_free(key); }
};

using SftpFile = std::unique_ptr<sftp_file_struct, SftpFileClose>;
using SftpDir = std::unique_ptr<sftp_dir_struct, SftpDirClose>;
using SftpAttributes = std::unique_ptr<sftp_attributes_struct, SftpAttributesFree>;
using SshKey = std::unique_ptr<ssh_key_struct, SshKeyFree>;

class SftpConnection {
 public:
  explicit SftpConnection(const SftpOptions& options);
  SftpConnection(const SftpConnection&) = delete;
  SftpConnection& operator=(const SftpConnection&) = delete;

  sftp_session sftp() const { return sftp_.get(); }
  // Bounds the wait of the requests made while the guard lives by the time-out.
  Watchdog::Guard Watch() { return Watchdog::Guard(*watchdog_); }
  // "HOST" or "HOST:PORT", for messages.
  const std::string& address() const { return address_; }
  // Why the last SFTP request failed: the server's status ("no such file") or, when the
  // connection itself failed, libssh's account of that.
  std::string LastError() const;

 private:
  std::string address_;
  std::unique_ptr<ssh_session_struct, SshSessionFree> ssh_;
  std::unique_ptr<sftp_session_struct, SftpSessionFree> sftp_;
  std::unique_ptr<Watchdog> watchdog_;  // goes first, while the socket is still open
};

// The steps of opening, one file each.
// Accepts the server's host key or throws; records a new one when the options allow it.
void VerifyHostKey(ssh_session session, const SftpOptions& options, const std::string& address);
// Logs on as the options' user or throws.
void LogOn(ssh_session session, const SftpOptions& options, const std::string& address);

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_CONNECTION_H_
