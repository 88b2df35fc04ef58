#include "parser/statement_summary.h"

namespace parser {

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

void AddIntoGrandTotals(TraceStatement& statement) {
  CallTotals& grand = statement.totals[kGrandTotals];
  grand.Add(statement.totals[kParseTotals]);
  grand.Add(statement.totals[kExecTotals]);
  grand.Add(statement.totals[kFetchTotals]);
}

}  // namespace parser
