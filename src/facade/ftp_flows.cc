// The FTP methods. Each session lives for one call (a batch parse keeps its own between calls)
// and is released however the call ends.
#include "facade/ftp_session.h"
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"

namespace facade {

namespace {

constexpr const char* kAllTraceFiles = "*.trc";
constexpr std::uint16_t kLongListing = 1;

// Closes the session when the call fails, before the failure is reported; the first failure is
// the one the caller sees.
template <typename Work>
void CloseOnFailure(FtpSession& session, Work&& work) {
  try {
    work();
  } catch (const exceptions::ExceptionBase&) {
    try {
      session.Close();
    } catch (const exceptions::ExceptionBase&) {
    }
    throw;
  }
}

}  // namespace

std::unique_ptr<FtpSession> CPelicor::OpenFtpSession() const {
  std::unique_ptr<FtpSession> session = MakeFtpSession();
  session->SetConnectInfo(ftp_info_);
  session->SetWorkDir(working_dir_);
  session->Init();
  return session;
}

int CPelicor::FtpGetTraceFileList(std::uint16_t listStyle, std::string* msg) {
  return RunMethod(msg, [&] {
    const std::unique_ptr<FtpSession> session = OpenFtpSession();
    session->GetFileList(listStyle, kAllTraceFiles);
    session->Close();
  });
}

int CPelicor::FtpGetTraceFileListPID(const char* PID, std::string* msg) {
  return RunMethod(msg, [&] {
    const std::unique_ptr<FtpSession> session = OpenFtpSession();
    session->GetFileList(kLongListing, "*" + Text(PID) + ".trc");
    session->Close();
  });
}

int CPelicor::FtpGetTraceFile(const char* fileName, std::string* msg) {
  return RunMethod(msg, [&] {
    const std::unique_ptr<FtpSession> session = OpenFtpSession();
    session->RetrieveFile(Text(fileName));
    session->Close();
  });
}

int CPelicor::FtpGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                                 std::string* msg) {
  fname->clear();
  return RunMethod(msg, [&] {
    const std::unique_ptr<FtpSession> session = OpenFtpSession();
    trace_file_name_.clear();
    start_offset_ = session->GetTraceFileNameFromPID(Text(PID), &trace_file_name_);
    if (contents != 0) session->RetrieveFile(trace_file_name_);
    session->Close();
    *fname = trace_file_name_;
  });
}

int CPelicor::FtpParseFile(const char* fileName, std::uint16_t /*parseOption*/,
                           std::uint16_t isAggregated, std::uint16_t xmlType,
                           std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    ParseWholeTrace(file_name, isAggregated, xmlType, outputXML, [&](parser::CTraceParser& parser) {
      const std::unique_ptr<FtpSession> session = OpenFtpSession();
      CloseOnFailure(*session, [&] {
        parser.ParseStream(session->Lines(), file_name, start_offset_);
        session->Close();
      });
    });
  });
}

int CPelicor::FtpParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                             std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    try {
      *outputXML = XmlFileName(file_name);
      if (nfs_stream_) DropShareBatch();
      if (!batch_parser_) {
        StartBatchParser();
        ftp_stream_ = OpenFtpSession();
        ftp_stream_->OpenDataStream(file_name, 0);
      }
      // A parser kept by ParseFileEx continues without a stream of its own.
      const bool more = ftp_stream_ ? batch_parser_->ParseStreamBatch(
                                          ftp_stream_->Lines(), file_name, count, BatchFlags(flag))
                                    : batch_parser_->ParseBatch(file_name, count, BatchFlags(flag));
      const char* answer = FinishBatchPortion(file_name, more);
      if (!more) DropFtpBatch();
      return answer;
    } catch (const exceptions::ExceptionBase&) {
      try {
        DropFtpBatch();
      } catch (const exceptions::ExceptionBase&) {
      }
      throw;
    }
  });
}

int CPelicor::FtpValidation(const char* hostname, const char* username, const char* password,
                            const char* udump, const char* PID, std::string* msg) {
  if (AnyMissing({hostname, username, password, udump})) {
    return RefuseArguments(
        "hostname/username/password/udump/pid can not be empty or NULL! Check registry setting.",
        msg);
  }
  if (AnyMissing({PID})) return RefuseArguments("PID is empty or NULL!", msg);
  return RunMethod(msg, [&] {
    // The stored FTP settings stay as they are: only this session sees the given ones.
    std::unique_ptr<FtpSession> session = MakeFtpSession();
    session->SetConnectInfo(hostname, username, password, udump);
    session->SetWorkDir(working_dir_);
    session->Init();
    start_offset_ = session->GetTraceFileNameFromPID(PID, &trace_file_name_);
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
    ftp_info_.host_name = hostname;
    ftp_info_.user_name = username;
    ftp_info_.password = password;
    ftp_info_.udump = udump;
    const std::unique_ptr<FtpSession> session = OpenFtpSession();
    start_offset_ = session->GetTraceFileNameFromPID(Text(PID), &trace_file_name_);
    session->Close();
    *outputXML = XmlFileName(trace_file_name_);
    transport_kind_ = kFtp;
  });
}

void CPelicor::ParseSessionTraceOverFtp(parser::CTraceParser& parser) {
  const std::unique_ptr<FtpSession> session = OpenFtpSession();
  parser.ParseStream(session->Lines(), trace_file_name_, start_offset_);
  session->Close();
}

}  // namespace facade
