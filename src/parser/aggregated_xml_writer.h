// The aggregated, TKPROF-like documents: one STATEMENT per statement with its parse, execute,
// fetch and total figures in seconds, its wait time per wait class, its plan rows, its
// library-cache misses and its optimizer goal.
//
//   <STATEMENTS>
//   <STATEMENT>
//   <SQL><![CDATA[select ...]]></SQL>
//   <PARSE count="1" cpu="0.01" elapsed="0.02" disk="0" query="0" current="0" rows="0"></PARSE>
//   ...
//
// Both writers add each written statement's parse, execute and fetch totals into its grand
// totals (see AddIntoGrandTotals), and so change the statements they are given.
#ifndef PELICOR_PARSER_AGGREGATED_XML_WRITER_H_
#define PELICOR_PARSER_AGGREGATED_XML_WRITER_H_

#include <cstdint>
#include <string>

#include "parser/document_context.h"
#include "parser/output_sink.h"
#include "parser/trace_statement.h"

namespace parser {

// Ticks per second of a trace written by an Oracle of this major version: 100 before 9,
// 1000000 from 9 on.
std::int64_t AggregatedTimeDivisor(int oracle_major_version);

// Every statement of `closed`, to AggregatedXmlPath(file_name), which takes its name only when
// complete. Throws exceptions::ExceptionBase when `closed` is empty, when the name holds neither
// ".trc" nor ".TRC", or when the file cannot be created (nothing is written then), and with a
// message naming the file when a write fails (the previous file stays). Once the file is open,
// *time_divisor (the parser's divisor; may be null) is set to
// AggregatedTimeDivisor(context.oracle_major_version).
void WriteTkprofXml(StatementList& closed, const DocumentContext& context, std::string file_name,
                    std::int64_t* time_divisor = nullptr);

// Only the statements whose SQL text contains context.statement_id, with the plan rows split
// into operation and option and their row-source figures. Fails as WriteTkprofXml does, and
// also before writing when the statement id is empty, and after writing the whole document when
// no statement or more than one matched (the file stays).
void WriteSortedXml(StatementList& closed, const DocumentContext& context, std::string file_name,
                    std::int64_t* time_divisor = nullptr);

// For a caller that writes the document into its own sink (the command's -o): every check of
// the forms above, with their exceptions, before anything is written. For the sorted document
// that includes the match failures, which the form above raises after writing.
void CheckTkprofXml(const StatementList& closed, const std::string& file_name);
void CheckSortedXml(const StatementList& closed, const DocumentContext& context,
                    const std::string& file_name);

// The documents themselves, into `out`, without the checks of the forms above; the sorted one
// answers how many statements matched.
void WriteTkprofXml(StatementList& closed, const DocumentContext& context, OutputSink& out);
int WriteSortedXml(StatementList& closed, const DocumentContext& context, OutputSink& out);

}  // namespace parser

#endif  // PELICOR_PARSER_AGGREGATED_XML_WRITER_H_
