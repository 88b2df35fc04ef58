// The STATEMENT element of the aggregated documents, shared by both of them.
#ifndef PELICOR_PARSER_AGGREGATED_STATEMENT_H_
#define PELICOR_PARSER_AGGREGATED_STATEMENT_H_

#include <cstdint>

#include "parser/output_sink.h"
#include "parser/trace_statement.h"

namespace parser {

// The two documents differ in a few spellings and in the plan rows.
enum class AggregatedStyle {
  kTkprof,  // with the SQL text; wait rows "Total Waits" and "I/O"
  kSorted,  // without it; "TotalWaits" and "IO"; plan rows split into operation and option
};

// Writes one STATEMENT element, adding the statement's totals into its grand totals on the way.
void WriteAggregatedStatement(OutputSink& out, TraceStatement& statement, AggregatedStyle style,
                              std::int64_t time_divisor);

}  // namespace parser

#endif  // PELICOR_PARSER_AGGREGATED_STATEMENT_H_
