#include "parser/sort_step.h"

#include <gtest/gtest.h>

#include "parser/wait_classes.h"
#include "writer_fixtures.h"

namespace {

using parser::SortOptions;
using parser::StatementList;
using writer_test::StatementWithTotals;

// Statements "a" to "d" with (parse, exec, fetch) values chosen so that each key orders them
// differently; "d" has -1 sums, which compare as the largest unsigned numbers.
StatementList FourStatements() {
  StatementList list;
  list.push_back(StatementWithTotals("a", 5, 1, 1));
  list.push_back(StatementWithTotals("b", 1, 9, 1));
  list.push_back(StatementWithTotals("c", 1, 1, 1));
  list.push_back(StatementWithTotals("d", 0, -1, 0));
  return list;
}

std::string Order(const StatementList& list) {
  std::string order;
  for (const auto& statement : list) order += statement->header.text;
  return order;
}

TEST(SortStep, OrdersByTheChosenKeyDescendingAndStable) {
  const struct {
    SortOptions options;
    const char* order;
  } cases[] = {
      {{true, false, false, 0}, "abcd"},   // counts all equal: order kept
      {{true, false, false, 1}, "abcd"},   // cpu 5, 1, 1, 0
      {{false, true, false, 2}, "bacd"},   // elapsed 1, 9, 1, -1: doubles, -1 last
      {{false, true, false, 3}, "dbac"},   // disk as unsigned: -1 first
      {{true, true, true, 4}, "dbac"},     // query 7, 11, 3, -1
      {{true, false, true, 7}, "abcd"},    // rows 6, 2, 2, 0
      {{false, false, false, 6}, "abcd"},  // misses of the first parse: 5, 1, 1, 0
      {{false, false, false, 5}, "abcd"},  // nothing added: all 0
  };
  for (const auto& c : cases) {
    StatementList list = FourStatements();
    parser::SortStatements(list, &c.options);
    EXPECT_EQ(Order(list), c.order) << "key " << c.options.Key();
  }
}

TEST(SortStep, AddsIntoSortTotalsWithoutClearingAndIgnoresLargeKeys) {
  StatementList list = FourStatements();
  const SortOptions by_exec(false, true, false, 0);
  parser::SortStatements(list, &by_exec);
  parser::SortStatements(list, &by_exec);
  EXPECT_EQ(list.front()->totals[parser::kSortTotals].count, 2);
  EXPECT_EQ(list.front()->totals[parser::kSortTotals].query, 2);

  StatementList unsorted = FourStatements();
  const SortOptions large_key(true, true, true, 8);
  parser::SortStatements(unsorted, &large_key);
  parser::SortStatements(unsorted, nullptr);
  EXPECT_EQ(Order(unsorted), "abcd");
  EXPECT_EQ(unsorted.front()->totals[parser::kSortTotals].count, 0);
}

TEST(WaitClasses, WholeNameIgnoringAsciiCase) {
  const struct {
    const char* name;
    parser::WaitClass wait_class;
  } cases[] = {
      {"DB FILE SCATTERED READ", parser::kIo},
      {"buffer busy waits", parser::kBuffer},
      {"buffer latch", parser::kLatch},
      {"latch free ", parser::kOther},
      {"", parser::kOther},
      {"wait for recovery domain latch in kjpr", parser::kLatch},
      {"scginq ast call", parser::kLock},
  };
  for (const auto& c : cases) EXPECT_EQ(parser::WaitClassOf(c.name), c.wait_class) << c.name;
}

}  // namespace
