// The session half of CFtpManager: the client session's lifetime, connection data, log-on,
// listings and whole-file copies.
#include "transport/ftp_manager/ftp_manager.h"

#include <cctype>

#include "support/os/file_handle.h"
#include "support/os/path_separator.h"
#include "support/os/pending_file.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_manager_raise.h"

namespace transport {

using ftp_manager::kManger;
using ftp_manager::kRetrieveClass;
using ftp_manager::Raise;

namespace {

// The reply's first line ("530 Login incorrect.").
std::string FirstLine(const std::string& reply) {
  return reply.substr(0, reply.find('\n'));
}

// A refusal that asks for TLS:
//   530 Non-anonymous sessions must use encryption.   (vsftpd)
//   534 Policy requires SSL.
//   550 SSL/TLS required on the control channel      (proftpd; FileZilla answers 530 or 550)
bool AsksForTls(int code, const std::string& reply) {
  if (code != 530 && code != 534 && code != 550) return false;
  std::string lower;
  for (char c : reply) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const char* word : {"tls", "ssl", "encrypt", "secure", "auth"}) {
    if (lower.find(word) != std::string::npos) return true;
  }
  return false;
}

// The client's reason for a failed call: its message, and the server's words when it spoke.
std::string Reason(int result) {
  std::string reason = FtpErrorString(result);
  const std::string reply = FirstLine(FtpLastReply());
  if (!reply.empty() && result != kFtpNoAnswer && result != kFtpUnknownHost &&
      result != kFtpTimeout && result != kFtpNoServer) {
    reason += " (" + reply + ")";
  }
  return reason;
}

}  // namespace

CFtpManager::SessionBinding::SessionBinding(CFtpManager& manager) : manager_(manager) {
  if (manager_.bound_depth_++ == 0) FtpSwapSession(&manager_.session_);
}

CFtpManager::SessionBinding::~SessionBinding() {
  if (--manager_.bound_depth_ == 0) FtpSwapSession(&manager_.session_);
}

// The thread's own session (if any) is put aside while ours is made, then given back.
CFtpManager::CFtpManager() {
  FtpSessionPtr thread_session;
  FtpSwapSession(&thread_session);
  const int result = FtpInit();
  FtpSwapSession(&session_);
  FtpSwapSession(&thread_session);
  if (result != kFtpOk) Raise("CFtpManager::Init", "FtpInit", "FTP failed to initialize!");
  // Passive first: active connections fail behind NAT and client firewalls.
  SetDataMode(FtpDataMode::kPassiveThenActive);
}

CFtpManager::~CFtpManager() {
  try {
    UnInit();
  } catch (const exceptions::ExceptionBase&) {
    // Already in the activity log: the exception wrote itself there when it was made.
  }
}

void CFtpManager::UnInit() {
  int released = kFtpOk;
  if (session_) {
    const SessionBinding bound(*this);
    released = FtpRelease();
  }
  for (std::string* text : {&pending_, &current_line_, &host_, &user_, &password_, &udump_,
                            &work_dir_, &stream_name_}) {
    std::string().swap(*text);
  }
  if (released != kFtpOk) Raise("FtpManger::UnInit", "FtpRelease", "FTP failed to release!");
}

void CFtpManager::SetConnectInfo(const FtpConnectInfo& info) {
  host_ = info.GetHostName();
  user_ = info.GetUserName();
  password_ = info.GetPassword();
  udump_ = info.GetUdump();
}

void CFtpManager::SetConnectInfo(const char* host, const char* user, const char* password,
                                 const char* udump) {
  if (host == nullptr || user == nullptr || password == nullptr || udump == nullptr) {
    Raise("CFtpManager", "SetConnectInfo", "Invalid FTP connection information!");
  }
  host_ = host;
  user_ = user;
  password_ = password;
  udump_ = udump;
}

void CFtpManager::SetWorkDir(const std::string& path) {
  work_dir_ = path + os::kPathSeparator;
}

void CFtpManager::SetDataMode(FtpDataMode mode) {
  const SessionBinding bound(*this);
  FtpSetDataMode(mode);
}

void CFtpManager::SetPassiveMode(bool passive) {
  SetDataMode(passive ? FtpDataMode::kPassive : FtpDataMode::kActive);
}

void CFtpManager::SetTimeOut(int seconds) {
  const SessionBinding bound(*this);
  FtpSetDefaultTimeOut(seconds);
}

void CFtpManager::SetTls(bool on, const TlsOptions& options) {
  const SessionBinding bound(*this);
  if (FtpSetTls(on, options) == kFtpTlsUnavailable) {
    Raise(kManger, "SetTls",
          "FTP over TLS is not available in this build (it was built without OpenSSL)");
  }
}

std::string CFtpManager::WithTlsReason(const std::string& message, int result) const {
  if (result == kFtpTlsFailed) return message + " (" + host_ + ": " + FtpLastTlsFailure() + ")";
  if (result != kFtpTlsRefused) return message;
  return message + " (" + host_ + ": " + Reason(result) + ")";
}

// A refusal of TLS or a failed handshake closes the connection at once: the user name and
// password never go out in clear text. The messages of FTP over TLS name the host themselves.
//   FTP over TLS refused by db01:21, so the user name and password were not sent! Server
//   reply: 500 AUTH not understood
//   FTP failed to secure the connection to db01:21: certificate verify failed: hostname mismatch
void CFtpManager::RaiseLogonFailure(int result) {
  const std::string reply = FtpLastReply();
  if (result == kFtpTlsRefused) {
    Raise(kManger, "Init",
          "FTP over TLS refused by " + host_ +
              ", so the user name and password were not sent! Server reply: " + FirstLine(reply));
  }
  if (result == kFtpTlsFailed) {
    Raise(kManger, "Init",
          "FTP failed to secure the connection to " + host_ + ": " + FtpLastTlsFailure());
  }
  if (AsksForTls(FtpLastReplyCode(), reply)) {
    Raise(kManger, "Init",
          "FTP failed to logon: " + host_ +
              " requires an encrypted connection (FTP over TLS), which is not switched on! "
              "Server reply: " +
              FirstLine(reply));
  }
  failure_reason_ = Reason(result);
  Raise(kManger, "Init",
        "FTP failed to logon with the given info! Check ftp hostname/username/password.");
}

void CFtpManager::Init() {
  if (host_.empty() || user_.empty() || password_.empty() || udump_.empty()) {
    Raise(kManger, "Init", "hostname/username/password/udump, one of them is empty!");
  }
  const SessionBinding bound(*this);
  failure_reason_.clear();
  FtpSetSynchronousMode();
  if (const int result = FtpLogin(host_.c_str(), user_.c_str(), password_.c_str());
      result != kFtpOk) {
    RaiseLogonFailure(result);
  }
  logged_on_ = true;
  if (const int result = FtpCWD(udump_.c_str()); result != kFtpOk) {
    failure_reason_ = Reason(result);
    Raise(kManger, "Init",
          "FTP failed to change to trace directory! Check FTP qualified trace path.");
  }
  initialised_ = true;
}

void CFtpManager::Close() {
  const SessionBinding bound(*this);
  FinishSizeProbe();
  if (broken_) {
    broken_ = false;
    if (FtpCloseConnection() == kFtpOk) return;
  }
  if (FtpQuit() != kFtpOk && FtpCloseConnection() != kFtpOk) {
    Raise(kRetrieveClass, "FtpCloseDataConnection", "FTP failed to close connection");
  }
}

void CFtpManager::GetFileList(std::uint16_t mode, const std::string& pattern) {
  if (mode > 1) return;
  const SessionBinding bound(*this);
  size_probe_open_ = false;  // the listing finishes a data connection left open
  const std::string listing = LocalPath(kListingFileName);
  if (const int result = ListInto(pattern, listing, mode == 1); result != kFtpOk) {
    Raise(kManger, "GetFileList", WithTlsReason("FTP failed to get remote file listing!", result));
  }
}

// Both forms receive into a temporary file beside the local copy, which takes the copy's name
// only once the transfer has ended well: a failed one leaves nothing behind and keeps an older
// copy, and a link at that name is replaced rather than followed.
void CFtpManager::RetrieveFile(const std::string& remote) {
  const SessionBinding bound(*this);
  size_probe_open_ = false;
  os::PendingFile local;
  std::string error;
  bool received = local.Create(LocalPath(remote), &error);
  if (received) {
    os::CloseFile(local.ReleaseHandle());  // the client writes it by name
    received = FtpRecvFile(remote.c_str(), local.path().c_str(), kFtpTypeAscii, false) == kFtpOk &&
               local.Commit(&error);
  }
  if (!received) Raise(kRetrieveClass, "FtpOpenDataConnection", "FTP failed to retrieve file.");
}

void CFtpManager::RetrieveFile(const std::string& remote, char type, std::uint64_t offset) {
  const SessionBinding bound(*this);
  size_probe_open_ = false;
  os::PendingFile local;
  std::string error;
  if (!local.Create(LocalPath(remote), &error))
    Raise("NfsManger::GetTraceFileList", "_lcreat", error);
  // The client owns the handle from here and closes it however the transfer ends.
  if (FtpRecvFileToHandle(remote.c_str(), local.ReleaseHandle(), type, false,
                          static_cast<std::int64_t>(offset)) != kFtpOk ||
      !local.Commit(&error)) {
    Raise(kRetrieveClass, "FtpOpenDataConnection", "FTP failed to retrieve file.");
  }
}

}  // namespace transport
