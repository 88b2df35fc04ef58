// The call-by-call document of a whole-input parse, written while the trace is read: each
// statement as soon as no later line can reach it (CTraceParser::SetClosedStatementHandler), so
// that memory stays flat whatever the trace's size. The document's own figures (the session
// timestamp, the first cursor time) are known before the first statement is handed over.
//
// The statements are written by a thread of the document's own while the parser reads on; at
// most a few hundred wait for it. They are written and destroyed in the order they closed.
//
// The sink is opened by the caller's `open` (on the parser's thread) when the first statement is
// ready. When it cannot be opened, nothing is taken: the parse keeps every statement, Finish()
// answers false, and the caller writes the document its usual way after the parse, meeting the
// same failure in the same order (after any failure of the parse itself). Not for sorted or
// merged documents.
//
// When the aggregated document is to follow, the statements written are kept, reduced to what a
// summary-only parse keeps (KeepSummaryOnly), and Finish() puts them back in front of the
// statements the parser still holds, in their order: memory stays flat for both documents.
#ifndef PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_
#define PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "parser/document_context.h"
#include "parser/output_sink.h"
#include "parser/trace_parser.h"

namespace parser {

class StreamedCallDocument {
 public:
  using Open = std::function<bool(OutputSink& sink)>;

  enum class Written { kDropped, kKeptAsSummaries };

  // Hands `parser`'s closed statements to `sink` from now on; both must outlive this object.
  StreamedCallDocument(CTraceParser& parser, OutputSink& sink, Open open,
                       Written written = Written::kDropped);
  // The parser keeps its statements again; statements still waiting are dropped.
  ~StreamedCallDocument();
  StreamedCallDocument(const StreamedCallDocument&) = delete;
  StreamedCallDocument& operator=(const StreamedCallDocument&) = delete;

  // After a parse that succeeded: waits for the statements handed over, then writes the ones the
  // parser kept and the end of the document into the sink, which the caller then closes. False
  // when the sink could not be opened (nothing was written; the parser still holds every
  // statement). Rethrows what the writing thread met (running out of memory).
  bool Finish();

 private:
  bool Start();
  bool Take(std::unique_ptr<TraceStatement>& statement);
  void Write();
  void StopWriting();

  CTraceParser& parser_;
  OutputSink& sink_;
  Open open_;
  const Written written_;
  StatementList kept_;  // by the writing thread, until Finish() has stopped it
  DocumentContext context_;
  bool started_ = false;
  bool declined_ = false;

  std::mutex mutex_;
  std::condition_variable waiting_;  // a statement waits, or the writing is to stop
  std::condition_variable room_;     // a statement was written
  std::deque<std::unique_ptr<TraceStatement>> queue_;
  bool busy_ = false;  // the thread holds a statement it took from the queue
  bool stop_ = false;
  std::exception_ptr failure_;
  std::thread writer_;
};

}  // namespace parser

#endif  // PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_
