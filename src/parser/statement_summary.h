// Figures of one statement that the aggregated documents, the text report and the sort step
// share.
#ifndef PELICOR_PARSER_STATEMENT_SUMMARY_H_
#define PELICOR_PARSER_STATEMENT_SUMMARY_H_

#include <cstdint>
#include <string_view>

#include "parser/trace_statement.h"

namespace parser {

// Library-cache misses: the mis of the first PARSE call only (never summed), 0 without one.
std::int32_t FirstParseMisses(const TraceStatement& statement);

// The optimizer goal comes from the first EXEC call: its og, or -1 without one.
std::int32_t FirstExecGoal(const TraceStatement& statement);

// 1 "ALL ROWS", 2 "FIRST ROW", 3 "RULE", 4 "CHOOSE", anything else "UNKNOWN".
std::string_view OptimizerGoalName(std::int32_t goal);

// Reduces a statement of a full parse to what a summary-only parse keeps of it (see
// CTraceParser::SetSummaryOnly): its call, bind and wait records go, their first PARSE's mis,
// first EXEC's og and wait sums stay. The aggregated documents and the report read the same
// figures from it after as before.
void KeepSummaryOnly(TraceStatement& statement);

// Adds the parse, execute and fetch totals, in that order, into the grand totals. The grand
// totals are never cleared: each document or report written from one parse adds them again,
// so the second one shows them doubled. That is how the figures have always behaved.
void AddIntoGrandTotals(TraceStatement& statement);

}  // namespace parser

#endif  // PELICOR_PARSER_STATEMENT_SUMMARY_H_
