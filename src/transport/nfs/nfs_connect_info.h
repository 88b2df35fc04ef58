// The file-share connection data that the service object keeps and hands to CNfsManager: the
// server's trace directory (its user_dump_dest, "udump") as a path this machine can open, and
// the working directory for local files.
#ifndef PELICOR_TRANSPORT_NFS_NFS_CONNECT_INFO_H_
#define PELICOR_TRANSPORT_NFS_NFS_CONNECT_INFO_H_

#include <string>
#include <utility>

namespace transport {

class NfsConnectInfo {
 public:
  void SetUdump(std::string udump) { udump_ = std::move(udump); }
  // Stored as given, without a separator at the end.
  void SetWorkingDir(std::string working_dir) { working_dir_ = std::move(working_dir); }
  const std::string& GetUdump() const { return udump_; }
  const std::string& GetWorkingDir() const { return working_dir_; }

 private:
  std::string udump_;
  std::string working_dir_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_NFS_NFS_CONNECT_INFO_H_
