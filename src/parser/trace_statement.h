// One statement of a parsed trace: made for each PARSING IN CURSOR or PARSE ERROR line, it
// gathers, in trace order, everything later lines file under its cursor.
#ifndef PELICOR_PARSER_TRACE_STATEMENT_H_
#define PELICOR_PARSER_TRACE_STATEMENT_H_

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

#include "parser/call_totals.h"
#include "parser/records.h"
#include "parser/wait_classes.h"

namespace parser {

// Indexes of TraceStatement::totals.
enum TotalsKind : std::size_t {
  kParseTotals = 0,
  kExecTotals = 1,
  kFetchTotals = 2,
  kGrandTotals = 3,  // added into by the writers at write time, never cleared
  kSortTotals = 4,   // filled by the sort step with the kinds chosen for sorting
};

struct TraceStatement {
  std::int64_t sequence = 0;     // creation number within the parser, from 0, never reused
  CursorNo cursor = kNoCursor;   // current cursor; changes when the statement is reopened
  ParseInCursorRecord header;    // empty for a parse error
  ParseErrorRecord parse_error;  // empty unless is_parse_error
  std::vector<WaitRecord> waits;
  std::vector<BindRecord> binds;
  std::vector<StatRecord> stats;
  std::vector<CallRecord> parse_calls;
  std::vector<ExecCallRecord> exec_calls;
  std::vector<CallRecord> fetch_calls;
  std::array<CallTotals, 5> totals{};
  bool is_parse_error = false;
  std::int32_t bind_set_count = 0;
  bool cursor_known = false;     // `cursor` came from a line (see kNoCursor)
  bool cursor_negative = false;  // and was below 0 there

  // What a summary-only parse keeps in place of the call and wait records (see
  // CTraceParser::SetSummaryOnly); a full parse leaves these at their start values.
  std::int32_t first_parse_mis = 0;  // mis of the first PARSE call
  std::int32_t first_exec_og = -1;   // og of the first EXEC call
  std::int64_t wait_count = 0;
  std::array<double, kWaitClassCount> wait_sums{};  // ela summed per wait class, in trace order

  // The SQL text the statement stands for: the header's, or the parse error's.
  const std::string& SqlText() const { return is_parse_error ? parse_error.text : header.text; }
};

// Open and closed statement lists. A list (not a vector) because statements move between the
// two and out of the middle of either while the parse runs.
using StatementList = std::list<std::unique_ptr<TraceStatement>>;

}  // namespace parser

#endif  // PELICOR_PARSER_TRACE_STATEMENT_H_
