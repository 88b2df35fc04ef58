// The host key check: the server must prove it is the machine we talked to before, as recorded
// in the known-hosts file, before it sees a password or a key signature.
#include <cstdlib>
#include <string>

#include "transport/sftp/sftp_connection.h"
#include "transport/sftp/sftp_raise.h"

namespace transport::sftp {

namespace {

struct HashFree {
  void operator()(unsigned char* hash) const noexcept { ssh_clean_pubkey_hash(&hash); }
};
struct TextFree {
  void operator()(char* text) const noexcept { ssh_string_free_char(text); }
};

// "ssh-ed25519 SHA256:+KDlhvEtT6yx96GJb+ujaZiJrStZz3mnEoSyhQejTq4", as ssh shows it.
std::string Fingerprint(ssh_session session) {
  ssh_key raw = nullptr;
  if (ssh_get_server_publickey(session, &raw) != SSH_OK) return "an unreadable key";
  const SshKey key(raw);
  unsigned char* raw_hash = nullptr;
  std::size_t length = 0;
  if (ssh_get_publickey_hash(key.get(), SSH_PUBLICKEY_HASH_SHA256, &raw_hash, &length) != 0) {
    return ssh_key_type_to_char(ssh_key_type(key.get()));
  }
  const std::unique_ptr<unsigned char, HashFree> hash(raw_hash);
  const std::unique_ptr<char, TextFree> text(
      ssh_get_fingerprint_hash(SSH_PUBLICKEY_HASH_SHA256, hash.get(), length));
  return std::string(ssh_key_type_to_char(ssh_key_type(key.get()))) + " " +
         (text ? text.get() : "?");
}

std::string KnownHostsName(const SftpOptions& options) {
  return options.known_hosts.empty() ? "~/.ssh/known_hosts" : options.known_hosts;
}

}  // namespace

void VerifyHostKey(ssh_session session, const SftpOptions& options, const std::string& address) {
  const std::string file = KnownHostsName(options);
  switch (ssh_session_is_known_server(session)) {
    case SSH_KNOWN_HOSTS_OK:
      return;
    case SSH_KNOWN_HOSTS_CHANGED:
    case SSH_KNOWN_HOSTS_OTHER:
      // Never accepted on the spot, whatever the options say: the old key may be the true one.
      Raise("Init", "SFTP refused " + address + ": its host key (" + Fingerprint(session) +
                        ") is not the one recorded in " + file +
                        ". Someone may be intercepting the connection; if the server's key was "
                        "replaced on purpose, remove its old entry (ssh-keygen -R) first.");
    case SSH_KNOWN_HOSTS_UNKNOWN:
    case SSH_KNOWN_HOSTS_NOT_FOUND:
      if (!options.accept_new_host_key) {
        Raise("Init", "SFTP refused " + address + ": its host key (" + Fingerprint(session) +
                          ") is not known in " + file +
                          ". Check the fingerprint, then accept the new host key once to record "
                          "it.");
      }
      if (ssh_session_update_known_hosts(session) != SSH_OK) {
        Raise("Init", "SFTP failed to record the host key of " + address + " in " + file + ": " +
                          ssh_get_error(session));
      }
      return;
    case SSH_KNOWN_HOSTS_ERROR:
      break;
  }
  Raise("Init", "SFTP failed to check the host key of " + address + " against " + file + ": " +
                    ssh_get_error(session));
}

}  // namespace transport::sftp
