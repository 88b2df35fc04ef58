// The profile of hand-written traces whose figures are known: a trace that starts mid-session, a
// shared server process with two sessions taking turns. (The 8i trace in centiseconds: its whole
// text and HTML reports, report_text_test.cc and html_golden_test.cc.)
#include <gtest/gtest.h>

#include "report/plan_rows.h"
#include "report_fixtures.h"

namespace {

using report_test::ProfileOf;

TEST(ProfileReleases, TraceStartingMidSessionCountsItsFirstLines) {
  const report::Profile p = ProfileOf(report_test::kMidSession);
  EXPECT_FALSE(p.header.centiseconds);  // no banner, but 13-digit tim values
  // From the first wait's start (its tim less its ela) to the last FETCH's tim.
  EXPECT_EQ(p.response_time, 2002600);
  EXPECT_EQ(p.cpu, 1000);
  ASSERT_EQ(p.statements.size(), 1u);
  const report::StatementProfile& s = p.statements[0];
  EXPECT_FALSE(s.text_known);
  EXPECT_EQ(s.sql_text, "cursor #7");
  EXPECT_EQ(s.calls[report::kFetchCall].count, 2u);
  EXPECT_EQ(s.Rows(), 15);
  ASSERT_EQ(s.waits.size(), 1u);
  EXPECT_EQ(s.waits[0].total, 700);
  EXPECT_EQ(p.Unaccounted(), 2002600 - 1000 - 700 - 2000000);
}

TEST(ProfileReleases, SessionsTakingTurnsAreProfiledApart) {
  const report::Profile p = ProfileOf(report_test::kSharedServer);
  ASSERT_EQ(p.sessions.size(), 2u);
  EXPECT_EQ(p.sessions[0].id, "150.65");
  EXPECT_EQ(p.sessions[0].response_time, 40 + 5);  // two turns: 100..140 and 2000..2005
  EXPECT_EQ(p.sessions[0].calls, 3u);
  EXPECT_EQ(p.sessions[1].id, "147.121");
  EXPECT_EQ(p.sessions[1].response_time, 30);
  EXPECT_EQ(p.sessions[1].cpu, 1000);
  EXPECT_EQ(p.response_time, 75);
  EXPECT_EQ(p.header.instance, "DBM10203");
}

// An execution is an EXEC and the FETCHes after it; the slowest one's binds are kept. The same
// when each execution has a cursor of its own, whose execution then only ends with the trace:
// the first execution is still the trace's first.
TEST(ProfileReleases, ExecutionsSkewAndTheSlowestOnesBinds) {
  for (const bool cursor_each : {false, true}) {
    SCOPED_TRACE(cursor_each ? "a cursor each" : "one cursor");
    const std::string header =
        "PARSING IN CURSOR #1 len=32 dep=0 uid=0 oct=3 lid=0 tim=100 hv=1 "
        "ad='a'\nselect * from t where id = :b1\nEND OF STMT\n";
    std::string trace =
        "Oracle Database 10g Enterprise Edition Release 10.2.0.3.0 - 64bit Production\n" + header;
    const int elapsed[] = {5, 1, 9, 3};
    for (int i = 0; i < 4; ++i) {
      const std::string n = std::to_string(i);
      const std::string cursor = cursor_each ? std::to_string(i + 1) : "1";
      if (cursor_each && i > 0) trace += "PARSING IN CURSOR #" + cursor + header.substr(20);
      trace += "BINDS #" + cursor +
               ":\n Bind#0\n  oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00\n"
               "  value=" +
               n + "\n";
      trace += "EXEC #" + cursor +
               ":c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,tim=" + std::to_string(200 + 20 * i) +
               "\n";
      trace += "FETCH #" + cursor + ":c=0,e=" + std::to_string(elapsed[i] - 1) +
               ",p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=1,tim=" + std::to_string(210 + 20 * i) + "\n";
    }
    const report::Profile p = ProfileOf(trace);
    ASSERT_EQ(p.statements.size(), 1u);
    const report::StatementProfile& s = p.statements[0];
    EXPECT_EQ(s.elapsed_per_execution.min, 1);
    EXPECT_EQ(s.elapsed_per_execution.median, 3);  // the lower middle of 1 3 5 9
    EXPECT_EQ(s.elapsed_per_execution.max, 9);
    EXPECT_EQ(s.first_execution.number, 1u);
    ASSERT_EQ(s.first_execution.binds.size(), 1u);
    EXPECT_EQ(s.first_execution.binds[0].value, "0");
    EXPECT_EQ(s.slowest_execution.number, 3u);
    EXPECT_EQ(s.slowest_execution.elapsed, 9);
    ASSERT_EQ(s.slowest_execution.binds.size(), 1u);
    EXPECT_EQ(s.slowest_execution.binds[0].value, "2");
  }
}

// Figures at the ends of the 64-bit range, missing ones and absurd depths: the profile neither
// traps (the sanitizers watch) nor lets them reach its sums.
TEST(ProfileReleases, DamagedFiguresNeitherTrapNorReachTheSums) {
  const report::Profile p = ProfileOf(
      "Oracle Database 10g Enterprise Edition Release 10.2.0.3.0 - 64bit Production\n"
      "PARSING IN CURSOR #1 len=8 dep=2147483647 uid=0 oct=3 lid=0 tim=100 hv=1 ad='a'\n"
      "select 1\n"
      "END OF STMT\n"
      "EXEC #1:c=9223372036854775807,e=9223372036854775807,p=-5,cr=0,cu=0,mis=0,r=0,dep=0,og=1,"
      "tim=9223372036854775807\n"
      "FETCH #1:c=-9223372036854775808,e=-1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=1,"
      "tim=-9223372036854775808\n"
      "WAIT #1: nam='x' ela= 9223372036854775807 p1=0 p2=0 p3=0\n"
      "WAIT #1: nam='x' ela= -9223372036854775808 p1=0 p2=0 p3=0 obj#=1 tim=4611686018427387904\n"
      "EXEC #1:c=1,e=2,p=0,cr=0,cu=0,mis=0,r=0,dep=63,og=1,tim=200\n"
      "EXEC #1:c=1,e=2,p=0,cr=0,cu=0,mis=0,r=0,dep=2147483647,og=1,tim=300\n"
      "WAIT #1: nam='x' ela= 5 p1=0 p2=0 p3=0\n"
      "FETCH #1:c=0,e=0,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=1,tim=310\n");
  EXPECT_GE(p.response_time, 0);
  // At most the largest figure a line may carry (the wait before the clock), and the rest.
  EXPECT_LE(p.response_time, 10000000000000 + 1000);
  EXPECT_LE(p.cpu, 10000000000000 + 1000);
  ASSERT_EQ(p.statements.size(), 1u);
  EXPECT_EQ(p.statements[0].calls[report::kExecCall].count, 3u);
}

// STAT op texts of each release: the figures in parentheses by name, the operation before.
TEST(PlanRows, OperationFiguresOfEachRelease) {
  struct Row {
    const char* op;
    const char* operation;
    std::int64_t cr, pr, pw, time, cost, card;
  };
  const Row rows[] = {
      {"TABLE ACCESS FULL EMP", "TABLE ACCESS FULL EMP", -1, -1, -1, -1, -1, -1},
      {"HASH JOIN (cr=12 r=3 w=1 time=3210 us)", "HASH JOIN", 12, 3, 1, 3210, -1, -1},
      {"INDEX RANGE SCAN X (cr=5 pr=1 pw=0 time=439 us)", "INDEX RANGE SCAN X", 5, 1, 0, 439, -1,
       -1},
      {"PARTITION RANGE ALL PARTITION: 1 28 (cr=1720 pr=1649 pw=1649 time=7744 us cost=496 "
       "size=11217129 card=534149)",
       "PARTITION RANGE ALL PARTITION: 1 28", 1720, 1649, 1649, 7744, 496, 534149},
      {"SORT ORDER BY (cr=8 pr=0 pw=0 str=1 time=9 us cost=4 size=246 card=6)", "SORT ORDER BY", 8,
       0, 0, 9, 4, 6},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.op);
    const report::PlanRow read = report::ReadOperation(row.op);
    EXPECT_EQ(read.operation, row.operation);
    EXPECT_EQ(read.cr, row.cr);
    EXPECT_EQ(read.pr, row.pr);
    EXPECT_EQ(read.pw, row.pw);
    EXPECT_EQ(read.time, row.time);
    EXPECT_EQ(read.cost, row.cost);
    EXPECT_EQ(read.card, row.card);
  }
}

TEST(PlanRows, TheLastPlanOfACursorAsATree) {
  std::vector<parser::StatRecord> stats;
  const auto add = [&stats](std::int32_t id, std::int32_t pid, std::int32_t cnt) {
    parser::StatRecord stat;
    stat.id = id;
    stat.pid = pid;
    stat.cnt = cnt;
    stat.op = "OP" + std::to_string(id);
    stats.push_back(stat);
  };
  add(1, 0, 1);  // the plan after the first execution
  add(2, 1, 1);
  add(1, 0, 5);  // and again at close, with the figures of every execution
  add(2, 1, 5);
  add(3, 2, 5);
  add(4, 1, 9);
  const std::vector<report::PlanRow> plan = report::PlanRows(stats);
  ASSERT_EQ(plan.size(), 4u);
  EXPECT_EQ(plan[0].rows, 5);
  EXPECT_EQ(plan[0].depth, 0);
  EXPECT_EQ(plan[1].depth, 1);
  EXPECT_EQ(plan[2].depth, 2);
  EXPECT_EQ(plan[3].depth, 1);
}

}  // namespace
