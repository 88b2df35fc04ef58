// The raise sites' texts of CFtpManager, shared by its source files. Internal.
#ifndef PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_RAISE_H_
#define PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_RAISE_H_

#include <string>
#include <utility>

#include "support/exceptions.h"

namespace transport::ftp_manager {

constexpr const char* kFile = "FtpManager";
// The class text most raise sites carry, misspelled as hosts expect it.
constexpr const char* kManger = "FtpManger";
constexpr const char* kRetrieveClass = "CFtpManager::RetrieveFile";
constexpr const char* kStreamClass = "CFtpManager::OpenDataStream";

[[noreturn]] inline void Raise(const char* class_name, const char* method, std::string message) {
  throw exceptions::ExceptionBase(kFile, class_name, method, std::move(message));
}

}  // namespace transport::ftp_manager

#endif  // PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_RAISE_H_
