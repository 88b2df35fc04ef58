// The session half of CFtpManager: the client session's lifetime, connection data, log-on,
// listings and whole-file copies.
#include "transport/ftp_manager/ftp_manager.h"

#include "support/os/file_handle.h"
#include "support/os/path_separator.h"
#include "support/os/pending_file.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_manager_raise.h"

namespace transport {

using ftp_manager::kManger;
using ftp_manager::kRetrieveClass;
using ftp_manager::Raise;

CFtpManager::CFtpManager() {
  if (FtpInit() != kFtpOk) Raise("CFtpManager::Init", "FtpInit", "FTP failed to initialize!");
}

CFtpManager::~CFtpManager() {
  try {
    UnInit();
  } catch (const exceptions::ExceptionBase&) {
    // Already in the activity log: the exception wrote itself there when it was made.
  }
}

void CFtpManager::UnInit() {
  const int released = FtpRelease();
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

void CFtpManager::SetPassiveMode(bool passive) {
  FtpSetPassiveMode(passive);
}

void CFtpManager::SetTimeOut(int seconds) {
  FtpSetDefaultTimeOut(seconds);
}

void CFtpManager::Init() {
  if (host_.empty() || user_.empty() || password_.empty() || udump_.empty()) {
    Raise(kManger, "Init", "hostname/username/password/udump, one of them is empty!");
  }
  FtpSetSynchronousMode();
  if (FtpLogin(host_.c_str(), user_.c_str(), password_.c_str()) != kFtpOk) {
    Raise(kManger, "Init",
          "FTP failed to logon with the given info! Check ftp hostname/username/password.");
  }
  logged_on_ = true;
  if (FtpCWD(udump_.c_str()) != kFtpOk) {
    Raise(kManger, "Init",
          "FTP failed to change to trace directory! Check FTP qualified trace path.");
  }
  initialised_ = true;
}

void CFtpManager::Close() {
  FinishSizeProbe();
  if (FtpQuit() != kFtpOk && FtpCloseConnection() != kFtpOk) {
    Raise(kRetrieveClass, "FtpCloseDataConnection", "FTP failed to close connection");
  }
}

void CFtpManager::GetFileList(std::uint16_t mode, const std::string& pattern) {
  if (mode > 1) return;
  size_probe_open_ = false;  // the listing finishes a data connection left open
  const std::string listing = LocalPath(kListingFileName);
  if (FtpDir(pattern.c_str(), listing.c_str(), mode == 1) != kFtpOk) {
    Raise(kManger, "GetFileList", "FTP failed to get remote file listing!");
  }
}

// Both forms receive into a temporary file beside the local copy, which takes the copy's name
// only once the transfer has ended well: a failed one leaves nothing behind and keeps an older
// copy, and a link at that name is replaced rather than followed.
void CFtpManager::RetrieveFile(const std::string& remote) {
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
