// The batch parses, and the state they keep between calls: the parser, and for the FTP and
// file-share forms the transport that feeds it.
//
// States: idle (no batch parser) -> in progress after a call that answered "MORE" -> idle after
// a call that found nothing more. ParseFileEx always continues a parse in progress and keeps
// it after a failure. The FTP and file-share forms drop the other transport's parse before
// they start their own, and drop their own state after a failure, so that the next call starts
// afresh.
#include <utility>

#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "transport/ftp_manager/ftp_manager.h"
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

// The manager is kept only once its data stream is open: closing a data connection that never
// opened would wait the whole time-out for a reply that does not come.
void CPelicor::StartFtpBatch(const std::string& file_name) {
  StartBatchParser();
  auto manager = std::make_unique<transport::CFtpManager>();
  CloseOnFailure(*manager, [&] {
    ConnectFtp(*manager);
    manager->OpenDataStream(file_name, 0);
  });
  ftp_stream_ = std::move(manager);
}

// The manager is released however closing goes; its destructor ends what is still open.
void CPelicor::DropFtpBatch(FtpBatchEnd end) {
  batch_parser_.reset();
  const std::unique_ptr<transport::CFtpManager> manager = std::move(ftp_stream_);
  if (!manager) return;
  if (end == FtpBatchEnd::kFinished) {
    manager->CloseDataStream();
    manager->Close();
    return;
  }
  IgnoringFailure([&] { manager->CloseDataStream(); });
  IgnoringFailure([&] { manager->Close(); });
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
      if (ftp_stream_) DropFtpBatch(FtpBatchEnd::kAbandoned);
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

int CPelicor::FtpParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                             std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    try {
      *outputXML = XmlFileName(file_name);
      if (nfs_stream_) DropShareBatch();
      if (!batch_parser_) StartFtpBatch(file_name);
      // A parser kept by ParseFileEx continues without a stream of its own.
      const bool more = ftp_stream_ ? batch_parser_->ParseStreamBatch(*ftp_stream_, file_name,
                                                                      count, BatchFlags(flag))
                                    : batch_parser_->ParseBatch(file_name, count, BatchFlags(flag));
      const char* answer = FinishBatchPortion(file_name, more);
      if (!more) DropFtpBatch(FtpBatchEnd::kFinished);
      return answer;
    } catch (const exceptions::ExceptionBase&) {
      DropFtpBatch(FtpBatchEnd::kAbandoned);
      throw;
    }
  });
}

}  // namespace facade
