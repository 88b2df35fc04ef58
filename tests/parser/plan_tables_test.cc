#include "parser/plan_tables.h"

#include <gtest/gtest.h>

namespace {

TEST(PlanTables, SplitsOpTextsByTableOrder) {
  const struct {
    const char* op;
    int operation;
    int option;
  } cases[] = {
      {"TABLE ACCESS FULL EMP", 0, 2},
      {"SORT AGGREGATE", 19, 16},
      {"COUNT", 62, 70},  // a bare name matches no row
      {"INDEX FOO", 2, 69},
      {"SORT ", 19, 69},  // the empty rest matches the empty last row
      {"CONNECT BY PUMP ", 3, 69},
      {"CONNECT BY WITH FILTERING", 4, 56},
      {"VIEW PUSHED PREDICATE X", 13, 69},
      {"INDEX FULL SCAN (MIN/MAX) PK", 2, 0},
      {"INDEX FULL SCAN DESCENDING PK", 2, 1},  // hidden behind FULL SCAN
      {"INDEX RANGE SCAN I_OBJ2 (cr=2 r=0 w=0 time=22 us)", 2, 10},
      {"FIXED TABLE FIXED INDEX #1 X$KSLED", 29, 50},
      {"SORT GROUP BY NOSORT", 19, 20},
      {"PX SEND QC (RANDOM) :TQ10001", 61, 69},  // "QC (RANDOM), HASH, RANGE" is one name
      {"HASH JOIN  (cr=15 r=9 w=0 time=20012 us)", 6, 69},
      {"table access full emp", 62, 70},  // case matters
      {"", 62, 70},
  };
  for (const auto& c : cases) {
    const parser::PlanCodes codes = parser::SplitOpText(c.op);
    EXPECT_EQ(codes.operation, c.operation) << c.op;
    EXPECT_EQ(codes.option, c.option) << c.op;
  }
}

}  // namespace
