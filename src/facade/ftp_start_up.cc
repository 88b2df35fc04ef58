// The FTP side of a traced session: validation and start-up find the session's trace file
// and remember it with its size; ZantivGetTraceInfo later reads what was written after it.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "transport/ftp_manager/ftp_manager.h"

namespace facade {

int CPelicor::FtpValidation(const char* hostname, const char* username, const char* password,
                            const char* udump, const char* PID, std::string* msg) {
  if (AnyMissing({hostname, username, password, udump})) {
    return RefuseArguments(
        "hostname/username/password/udump/pid can not be empty or NULL! Check registry setting.",
        msg);
  }
  if (AnyMissing({PID})) return RefuseArguments("PID is empty or NULL!", msg);
  return RunMethod(msg, [&] {
    // The stored FTP settings stay as they are: only this session sees the given ones. The
    // manager goes without a QUIT; releasing it closes the connection.
    transport::CFtpManager manager;
    ApplyFtpTls(manager);
    manager.SetConnectInfo(hostname, username, password, udump);
    manager.SetWorkDir(working_dir_);
    manager.Init();
    start_offset_ = manager.GetTraceFileNameFromPID(PID, &trace_file_name_);
    transport_kind_ = kFtp;
  });
}

int CPelicor::ZantivFtpTrcStartUp(const char* hostname, const char* username, const char* password,
                                  const char* udump, const char* PID, std::string* outputXML,
                                  std::string* msg) {
  outputXML->clear();
  if (AnyMissing({hostname, username, password, udump})) {
    return RefuseArguments(
        "Hostname/username/password/udump can not be empty! Check registry setting.", msg);
  }
  return RunMethod(msg, [&] {
    // Stored first: they stay for later FTP calls even when the lookup below fails.
    ftp_info_.SetConnectInfo(hostname, username, password, udump);
    transport::CFtpManager manager;
    ConnectFtp(manager);
    start_offset_ = manager.GetTraceFileNameFromPID(Text(PID), &trace_file_name_);
    manager.Close();
    *outputXML = XmlFileName(trace_file_name_);
    transport_kind_ = kFtp;
  });
}

void CPelicor::ParseSessionTraceOverFtp(parser::CTraceParser& parser) {
  transport::CFtpManager manager;
  ConnectFtp(manager);
  parser.ParseStream(manager, trace_file_name_, start_offset_);
  manager.Close();
}

}  // namespace facade
