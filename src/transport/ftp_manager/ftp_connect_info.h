// The FTP connection data that the service object keeps and hands to CFtpManager: the server
// (host name, or "host:port"), the account, the server's trace directory (its
// user_dump_dest, "udump") and the working directory for local files.
#ifndef PELICOR_TRANSPORT_FTP_MANAGER_FTP_CONNECT_INFO_H_
#define PELICOR_TRANSPORT_FTP_MANAGER_FTP_CONNECT_INFO_H_

#include <string>
#include <utility>

namespace transport {

class FtpConnectInfo {
 public:
  // Nothing is checked or contacted here; CFtpManager::Init refuses empty values.
  void SetConnectInfo(std::string host_name, std::string user_name, std::string password,
                      std::string udump) {
    host_name_ = std::move(host_name);
    user_name_ = std::move(user_name);
    password_ = std::move(password);
    udump_ = std::move(udump);
  }
  // Stored as given, without a separator at the end.
  void SetWorkingDir(std::string working_dir) { working_dir_ = std::move(working_dir); }

  const std::string& GetHostName() const { return host_name_; }
  const std::string& GetUserName() const { return user_name_; }
  const std::string& GetPassword() const { return password_; }
  const std::string& GetUdump() const { return udump_; }
  const std::string& GetWorkingDir() const { return working_dir_; }

 private:
  std::string host_name_;
  std::string user_name_;
  std::string password_;
  std::string udump_;
  std::string working_dir_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_MANAGER_FTP_CONNECT_INFO_H_
