// The FTP methods of one call: listings, copies, the trace file of a server process and the
// whole-file parse. Each makes its own CFtpManager, logged on with the stored record, and
// releases it however the call ends, so the next FTP call on the thread can start its own.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "transport/ftp_manager/ftp_manager.h"

namespace facade {

int CPelicor::SetFtpTls(std::uint16_t useTls, const char* caFile, std::uint16_t insecure,
                        std::string* msg) {
  return RunMethod(msg, [&] {
    if (useTls != 0 && !transport::TlsAvailable()) {
      throw exceptions::ExceptionBase(
          "Pelicor", "CPelicor", "SetFtpTls",
          "FTP over TLS is not available in this build (it was built without OpenSSL)");
    }
    ftp_tls_ = useTls != 0;
    ftp_tls_options_ = transport::TlsOptions{Text(caFile), insecure == 0};
  });
}

void CPelicor::ApplyFtpTls(transport::CFtpManager& manager) const {
  if (ftp_tls_) manager.SetTls(true, ftp_tls_options_);
}

// The manager appends the separator to the working directory itself.
void CPelicor::ConnectFtp(transport::CFtpManager& manager) const {
  ApplyFtpTls(manager);
  manager.SetConnectInfo(ftp_info_);
  manager.SetWorkDir(working_dir_);
  manager.Init();
}

int CPelicor::FtpGetTraceFileList(std::uint16_t listStyle, std::string* msg) {
  return RunMethod(msg, [&] {
    transport::CFtpManager manager;
    ConnectFtp(manager);
    manager.GetFileList(listStyle, kAllTraceFiles);
    manager.Close();
  });
}

int CPelicor::FtpGetTraceFileListPID(const char* PID, std::string* msg) {
  return RunMethod(msg, [&] {
    transport::CFtpManager manager;
    ConnectFtp(manager);
    manager.GetFileList(kLongListing, TraceFilesOfPid(Text(PID)));
    manager.Close();
  });
}

int CPelicor::FtpGetTraceFile(const char* fileName, std::string* msg) {
  return RunMethod(msg, [&] {
    transport::CFtpManager manager;
    ConnectFtp(manager);
    manager.RetrieveFile(Text(fileName));
    manager.Close();
  });
}

int CPelicor::FtpGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                                 std::string* msg) {
  fname->clear();
  return RunMethod(msg, [&] {
    transport::CFtpManager manager;
    ConnectFtp(manager);
    trace_file_name_.clear();
    start_offset_ = manager.GetTraceFileNameFromPID(Text(PID), &trace_file_name_);
    if (contents != 0) manager.RetrieveFile(trace_file_name_);
    manager.Close();
    *fname = trace_file_name_;
  });
}

// Streams the remote file from the start offset; the session is closed before the documents
// are written.
int CPelicor::FtpParseFile(const char* fileName, std::uint16_t /*parseOption*/,
                           std::uint16_t isAggregated, std::uint16_t xmlType,
                           std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    ParseWholeTrace(file_name, isAggregated, xmlType, outputXML, [&](parser::CTraceParser& parser) {
      transport::CFtpManager manager;
      CloseOnFailure(manager, [&] {
        ConnectFtp(manager);
        parser.ParseStream(manager, file_name, start_offset_);
        manager.Close();
      });
    });
  });
}

}  // namespace facade
