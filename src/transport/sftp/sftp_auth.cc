// Logging on: a key file when one is given, else the SSH agent and the default keys, then the
// password when there is one. The server's refusals are collected into one message, so a
// failed log-on says everything that was tried.
#include <string>

#include "transport/sftp/sftp_connection.h"
#include "transport/sftp/sftp_raise.h"

namespace transport::sftp {

namespace {

[[noreturn]] void RaiseBroken(ssh_session session, const std::string& address) {
  Raise("Init", "SFTP failed to log on to " + address + ": " + ssh_get_error(session));
}

// True when the server took the key in `path`.
bool TryKeyFile(ssh_session session, const std::string& path, const std::string& address) {
  ssh_key raw = nullptr;
  if (ssh_pki_import_privkey_file(path.c_str(), nullptr, nullptr, nullptr, &raw) != SSH_OK) {
    Raise("Init", "SFTP cannot read the key file " + path +
                      " (a key with a passphrase must come through the SSH agent)");
  }
  const SshKey key(raw);
  const int result = ssh_userauth_publickey(session, nullptr, key.get());
  if (result == SSH_AUTH_ERROR) RaiseBroken(session, address);
  return result == SSH_AUTH_SUCCESS;
}

bool TryAgentAndDefaultKeys(ssh_session session, const std::string& address) {
  const int result = ssh_userauth_publickey_auto(session, nullptr, nullptr);
  if (result == SSH_AUTH_ERROR) RaiseBroken(session, address);
  return result == SSH_AUTH_SUCCESS;
}

bool TryPassword(ssh_session session, const std::string& password, const std::string& address) {
  const int result = ssh_userauth_password(session, nullptr, password.c_str());
  if (result == SSH_AUTH_ERROR) RaiseBroken(session, address);
  return result == SSH_AUTH_SUCCESS;
}

}  // namespace

void LogOn(ssh_session session, const SftpOptions& options, const std::string& address) {
  // Asking with no credentials first tells libssh which methods the server offers.
  const int none = ssh_userauth_none(session, nullptr);
  if (none == SSH_AUTH_SUCCESS) return;
  if (none == SSH_AUTH_ERROR) RaiseBroken(session, address);

  std::string keys;
  if (!options.identity.empty()) {
    if (TryKeyFile(session, options.identity, address)) return;
    keys = "the key " + options.identity;
  } else {
    if (TryAgentAndDefaultKeys(session, address)) return;
    keys = "the keys of the SSH agent and ~/.ssh";
  }
  const std::string failed = "SFTP failed to log on to " + address + " as " + options.user;
  if (options.password.empty()) {
    Raise("Init", failed + ": the server did not accept " + keys + ", and no password was given.");
  }
  if (TryPassword(session, options.password, address)) return;
  Raise("Init", failed + ": the server accepted neither " + keys + " nor the password.");
}

}  // namespace transport::sftp
