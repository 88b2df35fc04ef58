// The TKPROF-style text report of the closed statement list: banner, legend, the sort options,
// then per statement its SQL text, the call table, misses and optimizer goal:
//
//   call     count       cpu    elapsed       disk      query    current        rows
//   ------- ------  -------- ---------- ---------- ---------- ----------  ----------
//   Parse        1      0.01       0.02          0          0          0           0
//
// Like the aggregated documents it adds each statement's totals into its grand totals, so a
// report written after a document shows them doubled.
#ifndef PELICOR_PARSER_TEXT_REPORT_H_
#define PELICOR_PARSER_TEXT_REPORT_H_

#include <iostream>

#include "parser/document_context.h"
#include "parser/output_sink.h"
#include "parser/trace_statement.h"

namespace parser {

// Reads context.time_divisor and context.sort_options. Nothing is raised; stream errors are
// not examined.
void WriteTextReport(StatementList& closed, const DocumentContext& context, OutputSink& out);

// The same, to `stream` (standard output unless the caller names another); flushed at the end.
void WriteTextReport(StatementList& closed, const DocumentContext& context,
                     std::ostream& stream = std::cout);

}  // namespace parser

#endif  // PELICOR_PARSER_TEXT_REPORT_H_
