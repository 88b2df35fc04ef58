// How the SFTP transport raises its failures. Internal.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_RAISE_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_RAISE_H_

#include <string>
#include <utility>

#include "support/exceptions.h"

namespace transport::sftp {

constexpr const char* kFile = "SftpManager";
constexpr const char* kClass = "CSftpManager";

[[noreturn]] inline void Raise(const char* method, std::string message) {
  throw exceptions::ExceptionBase(kFile, kClass, method, std::move(message));
}

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_RAISE_H_
