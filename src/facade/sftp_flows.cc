// The SFTP methods (beyond the 25): each call makes its own CSftpManager, logged on with the
// stored settings, and closes it however the call ends.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "support/exceptions.h"
#include "transport/sftp/sftp_manager.h"

namespace facade {

namespace {

// A manager logged on to the stored server, writing listings into `working_dir`.
void ConnectSftp(const SftpSettings& settings, const std::string& working_dir,
                 transport::CSftpManager& manager) {
  transport::sftp::SftpOptions options;
  // An empty host is left to Init, which refuses every missing setting with one message.
  if (!settings.host.empty() && !transport::sftp::SetHostAndPort(settings.host, &options)) {
    throw exceptions::ExceptionBase("SftpManager", "CSftpManager", "Init",
                                    "SFTP: not a host or HOST:PORT: " + settings.host);
  }
  options.user = settings.user;
  options.password = settings.password;
  options.udump = settings.udump;
  options.identity = settings.identity;
  options.known_hosts = settings.known_hosts;
  options.accept_new_host_key = settings.accept_new_host_key;
  manager.SetOptions(std::move(options));
  manager.SetWorkDir(working_dir);
  manager.Init();
}

// Where copies go: the working directory, the current one when it is empty.
std::string CopyDirectory(const std::string& working_dir) {
  return working_dir.empty() ? "." : working_dir;
}

}  // namespace

int CPelicor::SftpSetConnectInfo(const char* hostname, const char* username, const char* password,
                                 const char* udump, const char* identityFile,
                                 const char* knownHostsFile, std::uint16_t acceptNewHostKey,
                                 std::string* msg) {
  return RunMethod(msg, [&] {
    sftp_settings_ = {Text(hostname),     Text(username),       Text(password),       Text(udump),
                      Text(identityFile), Text(knownHostsFile), acceptNewHostKey != 0};
  });
}

int CPelicor::SftpGetTraceFileList(std::uint16_t listStyle, std::string* msg) {
  return RunMethod(msg, [&] {
    transport::CSftpManager manager;
    ConnectSftp(sftp_settings_, working_dir_, manager);
    manager.GetFileList(listStyle, kAllTraceFiles);
  });
}

int CPelicor::SftpGetTraceFile(const char* fileName, std::string* msg) {
  return RunMethod(msg, [&] {
    transport::CSftpManager manager;
    ConnectSftp(sftp_settings_, working_dir_, manager);
    manager.RetrieveFile(Text(fileName), CopyDirectory(working_dir_), nullptr);
  });
}

int CPelicor::SftpGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                                  std::string* msg) {
  fname->clear();
  return RunMethod(msg, [&] {
    transport::CSftpManager manager;
    ConnectSftp(sftp_settings_, working_dir_, manager);
    trace_file_name_.clear();
    // The object's start offset is 32 bits wide, as the other transports set it.
    start_offset_ =
        static_cast<std::uint32_t>(manager.GetTraceFileNameFromPID(Text(PID), &trace_file_name_));
    if (contents != 0) manager.RetrieveFile(trace_file_name_, CopyDirectory(working_dir_), nullptr);
    *fname = trace_file_name_;
  });
}

// Streams the remote file from the start offset; nothing is copied.
int CPelicor::SftpParseFile(const char* fileName, std::uint16_t /*parseOption*/,
                            std::uint16_t isAggregated, std::uint16_t xmlType,
                            std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    ParseWholeTrace(file_name, isAggregated, xmlType, outputXML, [&](parser::CTraceParser& parser) {
      transport::CSftpManager manager;
      ConnectSftp(sftp_settings_, working_dir_, manager);
      parser.ParseStream(manager, file_name, start_offset_);
    });
  });
}

}  // namespace facade
