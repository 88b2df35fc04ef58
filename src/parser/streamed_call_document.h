// The call-by-call document of a whole-input parse, written while the trace is read: each
// statement as soon as no later line can reach it (CTraceParser::SetClosedStatementHandler), so
// that memory stays flat whatever the trace's size. The document's own figures (the session
// timestamp, the first cursor time) are known before the first statement is handed over.
//
// The sink is opened by the caller's `open` when the first statement is ready. When it cannot
// be opened, nothing is taken: the parse keeps every statement, Finish() answers false, and the
// caller writes the document its usual way after the parse, meeting the same failure in the
// same order (after any failure of the parse itself). Not for sorted or merged documents.
#ifndef PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_
#define PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_

#include <functional>

#include "parser/document_context.h"
#include "parser/output_sink.h"
#include "parser/trace_parser.h"

namespace parser {

class StreamedCallDocument {
 public:
  using Open = std::function<bool(OutputSink& sink)>;

  // Hands `parser`'s closed statements to `sink` from now on; both must outlive this object.
  StreamedCallDocument(CTraceParser& parser, OutputSink& sink, Open open);
  // The parser keeps its statements again.
  ~StreamedCallDocument();
  StreamedCallDocument(const StreamedCallDocument&) = delete;
  StreamedCallDocument& operator=(const StreamedCallDocument&) = delete;

  // After a parse that succeeded: writes the statements the parser kept and the end of the
  // document into the sink, which the caller then closes. False when the sink could not be
  // opened (nothing was written; the parser still holds every statement).
  bool Finish();

 private:
  bool Start();
  bool Take(const TraceStatement& statement);

  CTraceParser& parser_;
  OutputSink& sink_;
  Open open_;
  DocumentContext context_;
  bool started_ = false;
  bool declined_ = false;
};

}  // namespace parser

#endif  // PELICOR_PARSER_STREAMED_CALL_DOCUMENT_H_
