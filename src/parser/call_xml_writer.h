// The call-by-call document: every statement of the closed list with its cursor header and each
// of its PARSE, EXEC and FETCH calls, binds, STAT rows and waits, as the trace had them.
//
//   <?xml version="1.0" encoding="UTF-8"?><STATEMENTS tim="..." FirstParseInCursorTim="...">
//   <STATEMENT>
//   <CURSORNO cursor="1"></CURSORNO>
//   <SQL><![CDATA[select ...
//   ]]></SQL><PARSEINCURSOR cursor="1" len="32" ...></PARSEINCURSOR>
//   <PARSE>
//   <PARSEDATA c="0" e="2" ...></PARSEDATA>
//   ...
//
// The writer reads the statements only, so it can run after each batch of a batch parse.
#ifndef PELICOR_PARSER_CALL_XML_WRITER_H_
#define PELICOR_PARSER_CALL_XML_WRITER_H_

#include <string>

#include "parser/document_context.h"
#include "parser/output_sink.h"
#include "parser/trace_statement.h"

namespace parser {

// Writes the document for `file_name` to CallXmlPath(file_name, context.output_directory),
// replacing a file of that name once it is complete. Throws exceptions::ExceptionBase ("Trace
// parser failed to create output XML file!") when it cannot be created, and a message naming
// the file when a write fails (the previous file then stays).
void WriteCallXml(const StatementList& closed, const DocumentContext& context,
                  std::string file_name);

// The document itself, into `out`.
void WriteCallXml(const StatementList& closed, const DocumentContext& context, OutputSink& out);

// The same document in three parts, for a writer that receives the statements one by one: the
// start (which reads the session timestamp and the first cursor time of `context`), each
// statement in turn, the end.
void WriteCallXmlStart(OutputSink& out, const DocumentContext& context);
void WriteCallXmlStatement(OutputSink& out, const TraceStatement& statement,
                           const DocumentContext& context);
void WriteCallXmlEnd(OutputSink& out);

// The attributes every STATDATA row starts with, up to the escaped op text, whose closing quote
// is the caller's: <STATDATA id="2" cnt="14" pid="1" pos="1" obj="31" op="TABLE ACCESS FULL EMP
// (the aggregated documents write the same row and may add attributes behind op).
void WriteStatDataStart(OutputSink& out, const StatRecord& stat);

}  // namespace parser

#endif  // PELICOR_PARSER_CALL_XML_WRITER_H_
