#include "parser/sort_step.h"

#include <cstdint>

#include "parser/statement_summary.h"

namespace parser {

namespace {

enum SortKey : std::uint16_t {
  kByCount = 0,
  kByCpu = 1,
  kByElapsed = 2,
  kByDisk = 3,
  kByQuery = 4,
  kByCurrent = 5,
  kByMisses = 6,
  kByRows = 7,
};

const CallTotals& SortTotals(const std::unique_ptr<TraceStatement>& statement) {
  return statement->totals[kSortTotals];
}

// std::list::sort is a stable merge sort; "greater" puts the largest first and keeps equal
// values in their previous order.
template <typename Value>
void SortDescending(StatementList& closed, Value value) {
  closed.sort([&value](const std::unique_ptr<TraceStatement>& a,
                       const std::unique_ptr<TraceStatement>& b) { return value(a) > value(b); });
}

// The counters are compared as unsigned 64-bit numbers, misses included.
template <typename Counter>
void SortByCounter(StatementList& closed, Counter counter) {
  SortDescending(closed, [&counter](const std::unique_ptr<TraceStatement>& statement) {
    return static_cast<std::uint64_t>(counter(statement));
  });
}

void AddChosenTotals(StatementList& closed, const SortOptions& options) {
  for (const auto& statement : closed) {
    CallTotals& sort_totals = statement->totals[kSortTotals];
    if (options.Prs()) sort_totals.Add(statement->totals[kParseTotals]);
    if (options.Exe()) sort_totals.Add(statement->totals[kExecTotals]);
    if (options.Fch()) sort_totals.Add(statement->totals[kFetchTotals]);
  }
}

}  // namespace

void SortStatements(StatementList& closed, const SortOptions* options) {
  if (options == nullptr) return;
  const std::uint16_t key = options->Key();
  if (key > kByRows) return;
  AddChosenTotals(closed, *options);
  using Statement = std::unique_ptr<TraceStatement>;
  switch (key) {
    case kByCount:
      return SortByCounter(closed, [](const Statement& s) { return SortTotals(s).count; });
    case kByCpu:
      return SortDescending(closed, [](const Statement& s) { return SortTotals(s).cpu; });
    case kByElapsed:
      return SortDescending(closed, [](const Statement& s) { return SortTotals(s).elapsed; });
    case kByDisk:
      return SortByCounter(closed, [](const Statement& s) { return SortTotals(s).disk; });
    case kByQuery:
      return SortByCounter(closed, [](const Statement& s) { return SortTotals(s).query; });
    case kByCurrent:
      return SortByCounter(closed, [](const Statement& s) { return SortTotals(s).current; });
    case kByMisses:
      return SortByCounter(closed, [](const Statement& s) {
        return static_cast<std::int64_t>(FirstParseMisses(*s));
      });
    default:
      return SortByCounter(closed, [](const Statement& s) { return SortTotals(s).rows; });
  }
}

}  // namespace parser
