#include "facade/pelicor.h"

#include "facade/method_rules.h"
#include "parser/sort_options.h"
#include "parser/trace_parser.h"
#include "support/os/path_separator.h"
#include "transport/ftp_manager/ftp_manager.h"
#include "transport/nfs/nfs_manager.h"

namespace facade {

CPelicor::CPelicor() = default;

// Also releases a batch parse left running: its parser, and its transport with the FTP
// session it holds.
CPelicor::~CPelicor() = default;

std::string CPelicor::LocalPath(const std::string& name) const {
  return working_dir_ + os::kPathSeparator + name;
}

std::string CPelicor::SharePath(const std::string& name) const {
  return nfs_info_.GetUdump() + os::kPathSeparator + name;
}

int CPelicor::SetWorkingDir(const char* wDir, std::string* msg) {
  return RunMethod(msg, [&] {
    working_dir_ = Text(wDir);
    ftp_info_.SetWorkingDir(working_dir_);
    nfs_info_.SetWorkingDir(working_dir_);
  });
}

int CPelicor::SetSortOption(std::uint16_t prs, std::uint16_t exe, std::uint16_t fch,
                            std::uint16_t key, std::string* msg) {
  return RunMethod(msg, [&] {
    sort_options_ = std::make_unique<parser::SortOptions>(prs > 0, exe > 0, fch > 0, key);
  });
}

int CPelicor::FtpSetConnectInfo(const char* hostname, const char* username, const char* password,
                                const char* udump, std::string* msg) {
  return RunMethod(msg, [&] {
    ftp_info_.SetConnectInfo(Text(hostname), Text(username), Text(password), Text(udump));
  });
}

int CPelicor::NfsSetConnectInfo(const char* udump, std::string* msg) {
  return RunMethod(msg, [&] { nfs_info_.SetUdump(Text(udump)); });
}

}  // namespace facade
