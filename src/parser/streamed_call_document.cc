#include "parser/streamed_call_document.h"

#include <utility>

#include "parser/call_xml_writer.h"

namespace parser {

StreamedCallDocument::StreamedCallDocument(CTraceParser& parser, OutputSink& sink, Open open)
    : parser_(parser), sink_(sink), open_(std::move(open)) {
  parser_.SetClosedStatementHandler([this](TraceStatement& statement) { return Take(statement); });
}

StreamedCallDocument::~StreamedCallDocument() {
  parser_.SetClosedStatementHandler(nullptr);
}

bool StreamedCallDocument::Start() {
  if (started_) return true;
  if (declined_ || !open_(sink_)) {
    declined_ = true;
    return false;
  }
  context_ = parser_.MakeDocumentContext();
  WriteCallXmlStart(sink_, context_);
  started_ = true;
  return true;
}

bool StreamedCallDocument::Take(const TraceStatement& statement) {
  if (!Start()) return false;
  WriteCallXmlStatement(sink_, statement, context_);
  return true;
}

bool StreamedCallDocument::Finish() {
  parser_.SetClosedStatementHandler(nullptr);
  if (!Start()) return false;
  for (const auto& statement : parser_.ClosedStatements()) {
    WriteCallXmlStatement(sink_, *statement, context_);
  }
  WriteCallXmlEnd(sink_);
  return true;
}

}  // namespace parser
