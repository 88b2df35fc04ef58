#include "parser/stat_row_timing.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

TEST(StatRowTiming, ReadsTheRowSourceFigures) {
  const struct {
    const char* op;
    bool present;
    std::int64_t cr, r, w;
    const char* time;
  } cases[] = {
      {"HASH JOIN (cr=12 r=0 w=0 time=3210 us)", true, 12, 0, 0, "3210 us"},
      {"TABLE ACCESS FULL EMP (cr=8 r=7 w=1 time=10397 us)", true, 8, 7, 1, "10397 us"},
      {"SORT (cr=  5  r=+3w=-2 time=1)", true, 5, 3, -2, "1"},
      {"VIEW (cr=x r=1 w=2 time=9 us", true, 0, 0, 0, "9 us"},  // no ')' : nothing cut
      {"INDEX (cr=4 rr=1 w=2 time=9 us)", true, 4, 0, 0, "9 us"},
      {"INDEX (cr=4 w=2 time=9)", true, 4, 0, 0, "9"},  // "r=" found inside "cr="
      {"TABLE ACCESS FULL EMP", false, 0, 0, 0, ""},
      {"X (cr=1 r=2 w=3)", false, 0, 0, 0, ""},
      // From 10g on: physical reads and writes, and more figures behind the time.
      {"INDEX RANGE SCAN X (cr=5 pr=1 pw=2 str=1 time=439 us cost=4 size=246 card=6)", true, 5, 1,
       2, "439 us"},
      {"FOR UPDATE  (cr=4 pr=0 pw=3 str=1 time=248us)", true, 4, 0, 3, "248us"},
  };
  for (const auto& c : cases) {
    const parser::StatRowTiming timing = parser::ReadStatRowTiming(c.op);
    EXPECT_EQ(std::make_tuple(timing.present, timing.cr, timing.r, timing.w, timing.time),
              std::make_tuple(c.present, c.cr, c.r, c.w, std::string(c.time)))
        << c.op;
  }
}

}  // namespace
