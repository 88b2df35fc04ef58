// The line forms of Oracle 10g and later: their kinds, scanners, the recursive-call ledger, and
// what they tell the parser about the trace.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "parser/line_kind.h"
#include "parser/record_scanners.h"
#include "parser/recursive_calls.h"
#include "parser/trace_parser.h"
#include "parser_fixture.h"

namespace {

using parser::LineKind;

// The release documents hold the common forms (CLOSE, XCTEND, ERROR, LOBREAD lines); these
// are the banners and look-alikes around them.
TEST(NewerForms, KindsAmongTheLinesTheOlderDispatcherIgnores) {
  const struct {
    const char* line;
    LineKind kind;
    bool ends_bind_block;
  } cases[] = {
      {"Oracle Database 19c Enterprise Edition Release 19.0.0.0.0 - Production\n",
       LineKind::kDatabaseBanner, true},
      {"Oracle Database 11g Release 11.1.0.6.0 - Production\n", LineKind::kDatabaseBanner, true},
      {"Oracle AI Database 26ai Free Release 23.26.0.0.0 - Develop, Learn, and Run for Free\n",
       LineKind::kDatabaseBanner, true},
      {"Oracle Database 10g Enterprise Edition\n", LineKind::kIgnored, false},
      {"Version 19.14.2.0.0\n", LineKind::kVersion, true},
      {"Version:        #2 SMP Sat Jul 16 13:06:22 PDT 2022\n", LineKind::kIgnored, false},
      {"CLOSE #140641987987624:c=3,e=3,dep=0,type=1,tim=5793511831927\n", LineKind::kClose, true},
      {"*** 2022-10-25T15:07:20.941104+02:00 (OPRD21(11))\n", LineKind::kIgnored, false},
      {"  value=\"jari\"\n", LineKind::kIgnored, false},
      {"kkscoacd\n", LineKind::kIgnored, false},
      {"\n", LineKind::kIgnored, false},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(parser::ClassifyNewerForm(test.line), test.kind) << test.line;
    EXPECT_EQ(parser::EndsNewerBindBlock(test.line, {}), test.ends_bind_block) << test.line;
  }
  EXPECT_TRUE(parser::EndsNewerBindBlock("EXEC #1:c=0\n", {}));
  EXPECT_TRUE(parser::OpensNewerBindBlock(" Bind#0\n"));
  EXPECT_TRUE(parser::OpensNewerBindBlock("\n"));
  EXPECT_TRUE(parser::OpensNewerBindBlock("kkscoacd\n"));
  EXPECT_FALSE(parser::OpensNewerBindBlock(" bind 0: dty=2 mxl=22(22)\n"));
}

TEST(NewerForms, WaitParametersByPositionWhateverTheirNames) {
  const struct {
    const char* rest;  // from "ela" on
    bool own_time;
    std::int64_t p1, p2, p3, tim;
  } cases[] = {
      {"ela= 12 file#=4 block#=1234 blocks=1 obj#=75 tim=99\n", true, 4, 1234, 1, 99},
      {"ela= 2 driver id=675562835 #bytes=1 p3=0 obj#=-1 tim=7\n", true, 675562835, 1, 0, 7},
      {"ela= 9 name|mode=1415053318 usn<<16 | slot=655374 sequence=93 obj#=8 tim=5\n", true,
       1415053318, 655374, 93, 5},
      {"ela= 4 duration=100 p2=0 p3=0 tim=6\n", true, 100, 0, 0, 6},  // no obj#
      {"ela= 9 handle address=-4288151550 p2=x p3=3 obj#=1 tim=8", true, -4288151550, 0, 3, 8},
      {"ela= 5 file#=4 block#=12 blocks=1 obj#=75\n", false, -9, -9, -9, -9},  // cut short
      {"ela= 40330 p1=4 p2=5148 p3=5\n", false, -9, -9, -9, -9},               // 10.1
      // The last " tim=" and the last " obj#=" before it count; at the very start too.
      {"ela= 3 a=1 b=2 c=3 tim=4 obj#=5 tim=6\n", true, 1, 2, 3, 6},
      {" tim=7", true, 0, 0, 0, 7},
      {"tim=7", false, -9, -9, -9, -9},
  };
  for (const auto& test : cases) {
    parser::WaitRecord wait;
    wait.p1 = wait.p2 = wait.p3 = wait.tim = -9;
    const bool own_time = parser::ScanNamedWaitFields(test.rest, &wait);
    EXPECT_EQ(std::make_tuple(own_time, wait.p1, wait.p2, wait.p3, wait.tim),
              std::make_tuple(test.own_time, test.p1, test.p2, test.p3, test.tim))
        << test.rest;
  }
}

TEST(NewerForms, BindLinesInTheirOrderOrField) {
  parser::BindRecord in_order;
  parser::ScanBindTypeLine("  oacdty=01 mxl=32(24) mxlc=00 mal=00 scl=00 pre=00\n", &in_order);
  parser::ScanBindFlagsLine("  oacflg=03 fl2=1000010 frm=01 csi=873 siz=160 off=128\n", &in_order);
  parser::ScanBindAddressLine("  kxsbbbfp=7fae3bd03058  bln=32  avl=06  flg=01\n", &in_order);
  // A release that leaves a field out or puts one in another place: found by name.
  parser::BindRecord by_name;
  parser::ScanBindTypeLine("  oacdty=01 mxl=32(24) mal=00 scl=00 pre=00\n", &by_name);
  parser::ScanBindFlagsLine("  oacflg=03 fl2=1000010 siz=160 off=128\n", &by_name);
  parser::ScanBindAddressLine("  kxsbbbfp=7fae3bd03058  flg=01  bln=32  avl=06\n", &by_name);
  const auto fields = [](const parser::BindRecord& b) {
    return std::make_tuple(b.dty, b.mxl, b.pl, b.oacflg, b.oacfl2, b.size, b.offset, b.bfp, b.bln,
                           b.avl, b.flg);
  };
  const auto expected =
      std::make_tuple(1, 32, 24, 3, 1000010, 160, 128, std::string("7fae3bd03058"), 32, 6, 1);
  EXPECT_EQ(fields(in_order), expected);
  EXPECT_EQ(fields(by_name), expected);
  const struct {
    const char* line;
    const char* value;
    bool open;
  } values[] = {
      {"  value=111242892\n", "111242892", false},
      {"  value=\"SH\"\n", "SH", false},
      {"  value=\"\"\r\n", "", false},
      {"  value=0 54\n", "0 54", false},
      {"  value=\"two\n", "two", true},
      {"  value=\n", "", false},
  };
  for (const auto& test : values) {
    parser::BindRecord bind;
    EXPECT_EQ(parser::ScanNewerBindValue(test.line, &bind), test.open) << test.line;
    EXPECT_EQ(bind.value, test.value) << test.line;
  }
  parser::BindRecord lines;
  ASSERT_TRUE(parser::ScanNewerBindValue("  value=\"one\n", &lines));
  EXPECT_TRUE(parser::ContinueBindValue("two\n", &lines));
  EXPECT_FALSE(parser::ContinueBindValue("three\"\n", &lines));
  EXPECT_EQ(lines.value, "one\ntwo\nthree");
  EXPECT_EQ(parser::ClassifyNewerBindLine("  value= Bind#1\n"), parser::NewerBindLine::kPosition);
}

parser::CallRecord Call(std::int32_t dep, std::int64_t e, std::int32_t cr) {
  parser::CallRecord call;
  call.dep = dep;
  call.c = call.e = e;
  call.p = call.cu = 0;
  call.cr = cr;
  return call;
}

TEST(RecursiveCalls, EachCallLosesTheFiguresOfTheCallsItMade) {
  parser::RecursiveCalls calls;
  EXPECT_EQ(calls.OwnFigures(Call(1, 40, 3)).e, 40);   // EXEC at depth 1, made by the call at 0
  EXPECT_EQ(calls.OwnFigures(Call(2, 5, 1)).e, 5);     // made by the FETCH below
  EXPECT_EQ(calls.OwnFigures(Call(1, 100, 9)).e, 95);  // FETCH at depth 1
  const parser::CallRecord own = calls.OwnFigures(Call(0, 200, 20));
  EXPECT_EQ(own.e, 60);  // 200 - 40 - 100
  EXPECT_EQ(own.cr, 8);  // 20 - 3 - 9
  EXPECT_EQ(own.c, 60);
  EXPECT_EQ(calls.OwnFigures(Call(0, 7, 1)).e, 7);  // nothing left to take off
  // A depth-2 call whose depth-1 parent never showed is not taken off a depth-0 call.
  calls.OwnFigures(Call(2, 50, 0));
  EXPECT_EQ(calls.OwnFigures(Call(0, 60, 0)).e, 60);
  // Missing fields are neither taken off nor passed on; missing or absurd depths count for none.
  parser::CallRecord missing = Call(1, 30, 0);
  missing.e = -1;
  calls.OwnFigures(missing);
  const parser::CallRecord parent = calls.OwnFigures(Call(0, 100, 0));
  EXPECT_EQ(parent.e, 100);
  EXPECT_EQ(parent.c, 70);
  EXPECT_EQ(calls.OwnFigures(Call(-1, 9, 0)).e, 9);
  EXPECT_EQ(calls.OwnFigures(Call(2147483647, 9, 0)).e, 9);
}

TEST(NewerForms, CloseKeepsTheStatementAndTimesMoveOn) {
  const auto trace = ParseText(CursorBlock(1, "select 1 from dual", 100) +
                               "EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=0,tim=1000\n"
                               "CLOSE #1:c=0,e=3,dep=0,type=1,tim=2000\n"
                               "WAIT #1: nam='x' ela= 7 p1=0 p2=0 p3=0\n"
                               "EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=0,tim=3000\n"
                               "XCTEND rlbk=0, rd_only=1, tim=4000\n"
                               "WAIT #1: nam='y' ela= 10 p1=0 p2=0 p3=0\n");
  ASSERT_EQ(trace->ClosedStatements().size(), 1u);
  const parser::TraceStatement& statement = *trace->ClosedStatements().front();
  ASSERT_EQ(statement.exec_calls.size(), 2u);  // the cursor was cached, not closed
  EXPECT_EQ(statement.exec_calls[1].tim, 3000);
  ASSERT_EQ(statement.waits.size(), 2u);
  EXPECT_EQ(statement.waits[0].tim, 2007);
  EXPECT_EQ(statement.waits[1].tim, 4010);
}

}  // namespace
