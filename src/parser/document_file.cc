#include "parser/document_file.h"

#include "support/exceptions.h"

namespace parser {

void FinishDocument(OutputSink& out, const std::string& path, const char* method) {
  if (out.Close()) return;
  throw exceptions::ExceptionBase(
      "TraceParser", "CTraceParser::CreateXML", method,
      "Trace parser failed to write the output XML file " + path + ": " + out.ErrorText());
}

}  // namespace parser
