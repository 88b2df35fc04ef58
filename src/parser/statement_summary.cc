#include "parser/statement_summary.h"

#include <vector>

namespace parser {

namespace {

// Gives the records' memory back: clear() and assigning {} keep it.
template <typename Record>
void Release(std::vector<Record>& records) {
  std::vector<Record>().swap(records);
}

}  // namespace

std::int32_t FirstParseMisses(const TraceStatement& statement) {
  return statement.parse_calls.empty() ? statement.first_parse_mis
                                       : statement.parse_calls.front().mis;
}

std::int32_t FirstExecGoal(const TraceStatement& statement) {
  return statement.exec_calls.empty() ? statement.first_exec_og : statement.exec_calls.front().og;
}

std::string_view OptimizerGoalName(std::int32_t goal) {
  switch (goal) {
    case 1:
      return "ALL ROWS";
    case 2:
      return "FIRST ROW";
    case 3:
      return "RULE";
    case 4:
      return "CHOOSE";
    default:
      return "UNKNOWN";
  }
}

void KeepSummaryOnly(TraceStatement& statement) {
  statement.first_parse_mis = FirstParseMisses(statement);
  statement.first_exec_og = FirstExecGoal(statement);
  // Summed in trace order, as a summary-only parse sums them while reading.
  for (const WaitRecord& wait : statement.waits) {
    ++statement.wait_count;
    statement.wait_sums[WaitClassOf(wait.nam)] += static_cast<double>(wait.ela);
  }
  Release(statement.waits);
  Release(statement.binds);
  Release(statement.parse_calls);
  Release(statement.exec_calls);
  Release(statement.fetch_calls);
}

void AddIntoGrandTotals(TraceStatement& statement) {
  CallTotals& grand = statement.totals[kGrandTotals];
  grand.Add(statement.totals[kParseTotals]);
  grand.Add(statement.totals[kExecTotals]);
  grand.Add(statement.totals[kFetchTotals]);
}

}  // namespace parser
