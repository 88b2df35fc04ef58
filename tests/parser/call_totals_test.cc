#include "parser/call_totals.h"

#include <gtest/gtest.h>

namespace {

TEST(CallTotals, AddsCallsFieldByFieldIncludingMissingOnes) {
  parser::CallTotals totals;
  parser::CallRecord call;
  call.c = 10;
  call.e = 20;
  call.p = 1;
  call.cr = 2;
  call.cu = 3;
  call.r = 4;
  totals.Add(call);
  totals.Add(parser::CallRecord{});  // every field missing: -1 each
  EXPECT_EQ(totals.count, 2);
  EXPECT_EQ(totals.cpu, 9.0);
  EXPECT_EQ(totals.elapsed, 19.0);
  EXPECT_EQ(totals.disk, 0);
  EXPECT_EQ(totals.query, 1);
  EXPECT_EQ(totals.current, 2);
  EXPECT_EQ(totals.rows, 3);

  parser::CallTotals grand;
  grand.Add(totals);
  grand.Add(totals);
  EXPECT_EQ(grand.count, 4);
  EXPECT_EQ(grand.rows, 6);
  EXPECT_EQ(grand.cpu, 18.0);
}

}  // namespace
