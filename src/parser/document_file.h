// The end of every document written to a file: it takes its name only when complete.
#ifndef PELICOR_PARSER_DOCUMENT_FILE_H_
#define PELICOR_PARSER_DOCUMENT_FILE_H_

#include <string>

#include "parser/output_sink.h"

namespace parser {

// Closes `out`, which writes the document `path`, and puts it in place. Throws
// exceptions::ExceptionBase (file "TraceParser", class "CTraceParser::CreateXML", method
// `method`) with a message naming the file and the reason when any write, the close or the
// rename failed: a full disk then leaves no half document, and a previous one stays.
void FinishDocument(OutputSink& out, const std::string& path, const char* method);

}  // namespace parser

#endif  // PELICOR_PARSER_DOCUMENT_FILE_H_
