// The SFTP methods in a build without libssh (the Windows build): each says so.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "support/exceptions.h"

namespace facade {

namespace {

constexpr const char* kSftpUnavailable =
    "SFTP is not available in this build (it was built without libssh)";

[[noreturn]] void ThrowUnavailable(const char* method, const char* message) {
  throw exceptions::ExceptionBase("Pelicor", "CPelicor", method, message);
}

}  // namespace

int CPelicor::SftpSetConnectInfo(const char*, const char*, const char*, const char*, const char*,
                                 const char*, std::uint16_t, std::string* msg) {
  return RunMethod(msg, [] { ThrowUnavailable("SftpSetConnectInfo", kSftpUnavailable); });
}

int CPelicor::SftpGetTraceFileList(std::uint16_t, std::string* msg) {
  return RunMethod(msg, [] { ThrowUnavailable("SftpGetTraceFileList", kSftpUnavailable); });
}

int CPelicor::SftpGetTraceFile(const char*, std::string* msg) {
  return RunMethod(msg, [] { ThrowUnavailable("SftpGetTraceFile", kSftpUnavailable); });
}

int CPelicor::SftpGetTraceFilePID(const char*, std::uint16_t, std::string* fname,
                                  std::string* msg) {
  fname->clear();
  return RunMethod(msg, [] { ThrowUnavailable("SftpGetTraceFilePID", kSftpUnavailable); });
}

int CPelicor::SftpParseFile(const char*, std::uint16_t, std::uint16_t, std::uint16_t,
                            std::string* outputXML, std::string* msg) {
  outputXML->clear();
  return RunMethod(msg, [] { ThrowUnavailable("SftpParseFile", kSftpUnavailable); });
}

}  // namespace facade
