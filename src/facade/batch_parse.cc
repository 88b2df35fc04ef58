// The batch parses of local and file-share traces, and the state they keep between calls.
//
// States: idle (no batch parser) -> in progress after a call that answered "MORE" -> idle after
// a call that found nothing more. ParseFileEx always continues a parse in progress and keeps
// it after a failure; the file-share form drops a running FTP parse first, and drops its own
// state after a failure, so that the next call starts afresh.
#include <utility>

#include "facade/ftp_session.h"
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "transport/nfs/nfs_manager.h"

namespace facade {

void CPelicor::StartBatchParser() {
  // Batches are written call by call, so the sort options play no part.
  batch_parser_ = std::make_unique<parser::CTraceParser>();
  batch_parser_->SetOutputDirectory(working_dir_);
}

const char* CPelicor::FinishBatchPortion(const std::string& file_name, bool more) {
  batch_parser_->CreateXML(file_name);
  batch_parser_->ClearClosedStatements();
  if (more) return kMore;
  batch_parser_.reset();
  return kOk;
}

void CPelicor::DropShareBatch() {
  batch_parser_.reset();
  nfs_stream_.reset();
}

// The session is released even when closing it fails; the failure is still reported.
void CPelicor::DropFtpBatch() {
  batch_parser_.reset();
  const std::unique_ptr<FtpSession> session = std::move(ftp_stream_);
  if (!session) return;
  session->CloseDataStream();
  session->Close();
}

int CPelicor::ParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                          std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    *outputXML = XmlFileName(file_name);
    if (!batch_parser_) StartBatchParser();
    const bool more = batch_parser_->ParseBatch(file_name, count, BatchFlags(flag));
    return FinishBatchPortion(file_name, more);
  });
}

int CPelicor::NfsParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                             std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    try {
      *outputXML = XmlFileName(file_name);
      if (ftp_stream_) DropFtpBatch();
      if (!batch_parser_) {
        StartBatchParser();
        nfs_stream_ = MakeShareManager();
      }
      const bool more = batch_parser_->ParseBatch(SharePath(file_name), count, BatchFlags(flag));
      const char* answer = FinishBatchPortion(file_name, more);
      if (!more) nfs_stream_.reset();
      return answer;
    } catch (const exceptions::ExceptionBase&) {
      DropShareBatch();
      throw;
    }
  });
}

}  // namespace facade
