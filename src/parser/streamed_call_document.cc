#include "parser/streamed_call_document.h"

#include <utility>

#include "parser/call_xml_writer.h"
#include "parser/statement_summary.h"

namespace parser {

namespace {

// Statements that may wait for the writing thread: enough to ride out a burst of small ones,
// few enough to keep memory flat.
constexpr std::size_t kMaxWaiting = 256;

}  // namespace

StreamedCallDocument::StreamedCallDocument(CTraceParser& parser, OutputSink& sink, Open open,
                                           Written written)
    : parser_(parser), sink_(sink), open_(std::move(open)), written_(written) {
  parser_.SetClosedStatementHandler(
      [this](std::unique_ptr<TraceStatement>& statement) { return Take(statement); });
}

StreamedCallDocument::~StreamedCallDocument() {
  parser_.SetClosedStatementHandler(nullptr);
  StopWriting();
}

bool StreamedCallDocument::Start() {
  if (started_) return true;
  if (declined_ || !open_(sink_)) {
    declined_ = true;
    return false;
  }
  context_ = parser_.MakeDocumentContext();
  WriteCallXmlStart(sink_, context_);
  writer_ = std::thread([this] { Write(); });
  started_ = true;
  return true;
}

bool StreamedCallDocument::Take(std::unique_ptr<TraceStatement>& statement) {
  if (!Start()) return false;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [this] { return queue_.size() < kMaxWaiting || failure_; });
    queue_.push_back(std::move(statement));
  }
  waiting_.notify_one();
  return true;
}

void StreamedCallDocument::Write() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    waiting_.wait(lock, [this] { return stop_ || !queue_.empty(); });
    if (queue_.empty()) return;
    std::unique_ptr<TraceStatement> next = std::move(queue_.front());
    queue_.pop_front();
    busy_ = true;
    const bool skip = stop_ || failure_;  // stopped early, or failed: the document goes
    lock.unlock();
    try {
      if (!skip) WriteCallXmlStatement(sink_, *next, context_);
      if (!skip && written_ == Written::kKeptAsSummaries) {
        KeepSummaryOnly(*next);
        kept_.push_back(std::move(next));
      }
      next.reset();
    } catch (...) {
      lock.lock();
      failure_ = std::current_exception();
      busy_ = false;
      room_.notify_all();
      continue;
    }
    lock.lock();
    busy_ = false;
    room_.notify_all();
  }
}

void StreamedCallDocument::StopWriting() {
  if (!writer_.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  waiting_.notify_one();
  writer_.join();
}

bool StreamedCallDocument::Finish() {
  parser_.SetClosedStatementHandler(nullptr);
  if (!Start()) return false;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [this] { return queue_.empty() && !busy_; });
  }
  StopWriting();
  if (failure_) std::rethrow_exception(failure_);
  StatementList& closed = parser_.ClosedStatements();
  for (const auto& statement : closed) WriteCallXmlStatement(sink_, *statement, context_);
  WriteCallXmlEnd(sink_);
  closed.splice(closed.begin(), kept_);
  return true;
}

}  // namespace parser
