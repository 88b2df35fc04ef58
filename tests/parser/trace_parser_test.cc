// CTraceParser: the dispatcher's filing of records under statements, the statement table, and
// the parse forms, on small traces written here.
#include "parser/trace_parser.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "parser_fixture.h"
#include "support/exceptions.h"

namespace {

using Texts = std::vector<std::string>;

std::unique_ptr<parser::CTraceParser> ParseText(const std::string& text) {
  const TempFile file(text);
  auto trace = std::make_unique<parser::CTraceParser>();
  trace->Parse(file.path(), 0);
  return trace;
}

TEST(CTraceParser, ReusedCursorClosesItsPreviousStatement) {
  auto trace = ParseText(CursorBlock(1, "select 1 from dual", 1000) +
                         CursorBlock(2, "select 2 from dual", 2000) +
                         CursorBlock(1, "select\n  3\n from dual", 3000));
  // #1's first statement closed when #1 opened again; the rest closed at the end, oldest first.
  EXPECT_EQ(SqlTexts(trace->ClosedStatements()),
            (Texts{"select 1 from dual\n", "select 2 from dual\n", "select\n  3\n from dual\n"}));
  EXPECT_EQ(Sequences(trace->ClosedStatements()), (std::vector<std::int64_t>{0, 1, 2}));
  const parser::ParseInCursorRecord& header = trace->ClosedStatements().front()->header;
  EXPECT_EQ(header.cursor, 1u);
  EXPECT_EQ(header.len, 18);
  EXPECT_EQ(header.hv, 3918581285);
  EXPECT_EQ(header.ad, "6b3d1f2c");
  EXPECT_EQ(trace->FirstCursorTime(), 1000);
  EXPECT_TRUE(trace->OpenStatements().empty());
}

TEST(CTraceParser, FilesCallsBindsWaitsAndStatRows) {
  auto trace = ParseText(
      CursorBlock(3, "select ename from emp where empno = :1") +
      "PARSE #3:c=0,e=88,p=0,cr=0,cu=0,mis=1,r=0,dep=0,og=4,tim=900\n"
      "EXEC #3:c=10,e=20,p=1,cr=2,cu=3,mis=0,r=0,dep=0,og=4,tim=1000\n"
      "WAIT #3: nam='db file sequential read' ela= 10 p1=4 p2=1234 p3=1\n"
      "WAIT #3: nam='db file sequential read' ela= 20 p1=4 p2=1235 p3=1\n"
      "BINDS #3:\n"
      " bind 0: dty=2 mxl=22(21) mal=00 scl=00 pre=00 oacflg=08 oacfl2=0010 size=24 offset=0\n"
      "   bfp=0a4f1c08 bln=22 avl=02 flg=05\n"
      "   value=7839\n"
      " bind 1: (No oacdef for this bind)\n"
      " bind 2: dty=1 mxl=32(03) mal=00 scl=00 pre=00 oacflg=18 oacfl2=1 size=32 offset=0\n"
      "   bfp=0a4f1bd4 bln=32 avl=03 flg=05\n"
      "   value=\"KING\"\n"
      "EXEC #3:c=0,e=5,p=0,cr=1,cu=0,mis=0,r=0,dep=0,og=4,tim=2000\n"
      "FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=2100\n"
      "BINDS #3:\n"
      " bind 0: dty=2 mxl=22(21) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0\n"
      "   bfp=0a4f1c08 bln=22 avl=00 flg=05\n"
      "WAIT #3: nam='lost after the binds' ela= 1 p1=0 p2=0 p3=0\n"
      "EXEC #3:c=0,e=5,p=0,cr=1,cu=0,mis=0,r=0,dep=0,og=4,tim=3000\n"
      "STAT #3 id=1 cnt=1 pid=0 pos=1 obj=31 op='TABLE ACCESS FULL EMP '\n"
      "FETCH #9:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=3100\n");
  ASSERT_EQ(trace->ClosedStatements().size(), 1u);
  const parser::TraceStatement& statement = *trace->ClosedStatements().front();
  ASSERT_EQ(statement.exec_calls.size(), 3u);
  EXPECT_EQ(statement.exec_calls[0].exebnd, -1);
  EXPECT_EQ(statement.exec_calls[1].exebnd, 0);
  EXPECT_EQ(statement.exec_calls[2].exebnd, 1);
  EXPECT_EQ(statement.parse_calls.size(), 1u);
  EXPECT_EQ(statement.fetch_calls.size(), 1u);  // FETCH #9 had no statement
  EXPECT_EQ(statement.totals[parser::kExecTotals].count, 3);
  EXPECT_EQ(statement.totals[parser::kExecTotals].cpu, 10.0);
  EXPECT_EQ(statement.totals[parser::kExecTotals].query, 4);
  ASSERT_EQ(statement.waits.size(), 2u);  // the wait right after the second block is lost
  EXPECT_EQ(statement.waits[0].nam, "db file sequential read");
  EXPECT_EQ(statement.waits[0].tim, 1010);
  EXPECT_EQ(statement.waits[1].tim, 1030);
  ASSERT_EQ(statement.binds.size(), 3u);
  EXPECT_EQ(statement.binds[0].oacfl2, 10);
  EXPECT_EQ(statement.binds[0].pl, 21);
  EXPECT_EQ(statement.binds[0].value, "7839");
  EXPECT_EQ(statement.binds[1].bind, 2);
  EXPECT_EQ(statement.binds[1].value, "KING");
  EXPECT_EQ(statement.binds[1].bind_set, 0);
  EXPECT_EQ(statement.binds[2].bind_set, 1);
  EXPECT_EQ(statement.binds[2].value, "");
  EXPECT_EQ(statement.bind_set_count, 2);
  ASSERT_EQ(statement.stats.size(), 1u);
  EXPECT_EQ(statement.stats[0].op, "TABLE ACCESS FULL EMP ");
  EXPECT_EQ(statement.stats[0].obj, 31);
}

TEST(CTraceParser, ReleaseBannerChoosesTheTimeDivisorByOneCharacter) {
  const struct {
    const char* banner;
    std::int64_t divisor;
    int major;
  } cases[] = {
      {"Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n", 1000000, 9},
      {"Oracle8i Enterprise Edition Release 8.1.7.0.0 - Production\n", 100, 8},
      {"Oracle10g Release 10.1.0.2.0\n", 100, 10},
      {"Oracle7 Server Release 7.3.4.0.0 - Production\n", 100, 7},
  };
  for (const auto& test : cases) {
    parser::CTraceParser trace;
    EXPECT_EQ(trace.TimeDivisor(), 100);
    EXPECT_EQ(trace.ReleaseCharacter(), '8');
    trace.DispatchLine(test.banner);
    EXPECT_EQ(trace.TimeDivisor(), test.divisor) << test.banner;
    EXPECT_EQ(trace.ReleaseCharacter(), test.banner[6]);
    EXPECT_EQ(trace.BannerMajorVersion(), test.major);
  }
}

TEST(CTraceParser, ProcessNumberLineClosesEveryOpenStatement) {
  parser::CTraceParser trace;
  trace.DispatchLine("PARSING IN CURSOR #1 len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n");
  trace.DispatchLine("PARSING IN CURSOR #2 len=0 dep=0 uid=5 oct=3 lid=5 tim=2 hv=2 ad='b'\n");
  EXPECT_EQ(trace.OpenStatements().size(), 2u);
  trace.DispatchLine("Oracle process number: 12\n");
  EXPECT_EQ(trace.OpenStatements().size(), 0u);
  EXPECT_EQ(Sequences(trace.ClosedStatements()), (std::vector<std::int64_t>{0, 1}));
}

TEST(CTraceParser, CursorCacheStaysOnAClosedStatement) {
  parser::CTraceParser trace;
  trace.DispatchLine("PARSING IN CURSOR #1 len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n");
  trace.DispatchLine("PARSING IN CURSOR #2 len=0 dep=0 uid=5 oct=3 lid=5 tim=2 hv=2 ad='b'\n");
  trace.CloseAll();
  // #2 is the cached cursor: its lines still reach the closed statement; #1's are dropped.
  trace.DispatchLine("EXEC #2:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n");
  trace.DispatchLine("EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=6\n");
  EXPECT_EQ(trace.ClosedStatements().front()->exec_calls.size(), 0u);
  EXPECT_EQ(trace.ClosedStatements().back()->exec_calls.size(), 1u);
  EXPECT_EQ(trace.StatementForCursor(2), trace.ClosedStatements().back().get());
  // Emptying the closed list forgets the cached statement with it.
  trace.ClearClosedStatements();
  EXPECT_EQ(trace.StatementForCursor(2), nullptr);
  trace.DispatchLine("EXEC #2:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=7\n");
  EXPECT_TRUE(trace.ClosedStatements().empty());
}

TEST(CTraceParser, MergeIdenticalSqlContinuesTheClosedStatement) {
  const std::string text = CursorBlock(1, "select 1 from dual") +
                           CursorBlock(1, "select 2 from dual") +
                           CursorBlock(7, "select 1 from dual") +
                           "EXEC #7:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n";
  const TempFile file(text);
  parser::CTraceParser merged;
  merged.SetMergeIdenticalSql(true);
  merged.Parse(file.path(), 0);
  EXPECT_EQ(Sequences(merged.ClosedStatements()), (std::vector<std::int64_t>{1, 0}));
  const parser::TraceStatement& reopened = *merged.ClosedStatements().back();
  EXPECT_EQ(reopened.cursor, 7u);
  EXPECT_EQ(reopened.header.cursor, 1u);  // the header stays the first one
  EXPECT_EQ(reopened.exec_calls.size(), 1u);

  parser::CTraceParser plain;
  plain.Parse(file.path(), 0);
  EXPECT_EQ(Sequences(plain.ClosedStatements()), (std::vector<std::int64_t>{0, 1, 2}));
}

TEST(CTraceParser, CloseFirstMovesTheOldestAndCountsTheRest) {
  parser::CTraceParser trace;
  for (int cursor = 1; cursor <= 3; ++cursor) {
    trace.DispatchLine("PARSING IN CURSOR #" + std::to_string(cursor) +
                       " len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n");
  }
  EXPECT_EQ(trace.CloseFirst(0), 3u);
  EXPECT_EQ(trace.CloseFirst(-4), 3u);
  EXPECT_EQ(trace.CloseFirst(2), 1u);
  EXPECT_EQ(Sequences(trace.ClosedStatements()), (std::vector<std::int64_t>{0, 1}));
  EXPECT_EQ(trace.CloseFirst(5), 0u);
}

TEST(CTraceParser, ParseErrorMakesAStatementOfItsOwn) {
  auto trace = ParseText(CursorBlock(3, "select 1 from dual") +
                         "PARSE ERROR #3:len=17 dep=0 uid=5 oct=3 lid=5 tim=77 err=942\n"
                         "select * from nx\n"
                         "EXEC #3:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n");
  ASSERT_EQ(trace->ClosedStatements().size(), 2u);
  const parser::TraceStatement& error = *trace->ClosedStatements().back();
  EXPECT_TRUE(error.is_parse_error);
  EXPECT_EQ(error.parse_error.err, 942);
  EXPECT_EQ(error.SqlText(), "select * from nx\n");
  EXPECT_EQ(error.exec_calls.size(), 1u);
}

TEST(CTraceParser, SessionTimestampIsTakenOncePerParse) {
  const TempFile file(
      "*** SESSION ID:(9.1407) 2004-05-07 11:20:17.631\n"
      "*** SESSION ID:(9.1408) 2004-05-07 12:00:00.000\n" +
      CursorBlock(1, "select 1 from dual", 4242));
  parser::CTraceParser trace;
  trace.Parse(file.path(), 0);
  EXPECT_EQ(trace.SessionTimestamp(), "2004-05-07 11:20:17.631\n");
  file.Write("*** SESSION ID:(1.2) 2010-01-01 00:00:00.000\n" + CursorBlock(1, "x", 99));
  trace.Parse(file.path(), 0);
  EXPECT_EQ(trace.SessionTimestamp(), "2010-01-01 00:00:00.000\n");
  EXPECT_EQ(trace.FirstCursorTime(), 4242);  // kept from the first parse
  EXPECT_EQ(trace.TraceFileName(), file.path());
}

TEST(CTraceParser, ParsesFromAByteOffset) {
  const std::string first = CursorBlock(1, "select 1 from dual");
  const TempFile file(first + CursorBlock(2, "select 2 from dual"));
  parser::CTraceParser trace;
  trace.Parse(file.path(), first.size());
  EXPECT_EQ(SqlTexts(trace.ClosedStatements()), (Texts{"select 2 from dual\n"}));
}

TEST(CTraceParser, BatchesStopAtTheLimitAndContinueWhereTheyStopped) {
  std::string text;
  for (int n = 0; n < 5; ++n) text += CursorBlock(1, "select " + std::to_string(n) + " from dual");
  text += "EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n";
  const TempFile file(text);
  parser::CTraceParser trace;
  // The third header closes the second statement: the closed list reaches 2 there.
  EXPECT_TRUE(trace.ParseBatch(file.path(), 2, 0));
  EXPECT_EQ(trace.ClosedStatements().size(), 2u);
  EXPECT_EQ(trace.OpenStatements().size(), 1u);
  trace.ClearClosedStatements();
  EXPECT_TRUE(trace.ParseBatch(file.path(), 2, 0));
  EXPECT_EQ(SqlTexts(trace.ClosedStatements()),
            (Texts{"select 2 from dual\n", "select 3 from dual\n"}));
  trace.ClearClosedStatements();
  // End of file: the limit counts the whole closed list, and the last statement is released.
  EXPECT_FALSE(trace.ParseBatch(file.path(), 2, 0));
  EXPECT_EQ(SqlTexts(trace.ClosedStatements()), (Texts{"select 4 from dual\n"}));
  EXPECT_EQ(trace.ClosedStatements().front()->exec_calls.size(), 1u);
  EXPECT_FALSE(trace.ParseBatch(file.path(), 2, 0));
}

TEST(CTraceParser, BatchFlagsSkipWaitsAndBinds) {
  const TempFile file(
      CursorBlock(1, "select 1 from dual") +
      "BINDS #1:\n"
      " bind 0: dty=2 mxl=22(21) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0\n"
      "EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n"
      "WAIT #1: nam='x' ela= 1 p1=0 p2=0 p3=0\n");
  parser::CTraceParser trace;
  // With limit 0 nothing is released at the end: the statement stays open, so more remains.
  EXPECT_TRUE(trace.ParseBatch(file.path(), 0,
                               parser::kSkipWaits | parser::kSkipBinds | parser::kTopLevelOnly));
  ASSERT_EQ(trace.OpenStatements().size(), 1u);
  const parser::TraceStatement& statement = *trace.OpenStatements().front();
  EXPECT_TRUE(statement.waits.empty());
  EXPECT_TRUE(statement.binds.empty());
  EXPECT_EQ(statement.exec_calls.size(), 1u);
  EXPECT_TRUE(trace.SkipWaits() && trace.SkipBinds() && trace.TopLevelOnly());
}

TEST(CTraceParser, StreamFormsReadTheirSource) {
  StringLineSource source({"PARSING IN CURSOR #1 len=9 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n",
                           "select 1\n",
                           "EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n"});
  parser::CTraceParser trace;
  trace.ParseStream(source, "orcl_ora_4242.trc", 77);
  EXPECT_EQ(source.opened_name, "orcl_ora_4242.trc");
  EXPECT_EQ(source.opened_offset, 77u);
  EXPECT_EQ(source.closes, 1);
  ASSERT_EQ(trace.ClosedStatements().size(), 1u);
  EXPECT_EQ(trace.ClosedStatements().front()->exec_calls.size(), 1u);

  StringLineSource batch(
      {"PARSING IN CURSOR #1 len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n",
       "PARSING IN CURSOR #1 len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='b'\n",
       "PARSING IN CURSOR #1 len=0 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='c'\n"});
  parser::CTraceParser batches;
  EXPECT_TRUE(batches.ParseStreamBatch(batch, "t.trc", 1, 0));
  EXPECT_EQ(batches.ClosedStatements().size(), 1u);
  EXPECT_FALSE(batches.ParseStreamBatch(batch, "t.trc", 3, 0));
  EXPECT_EQ(batches.ClosedStatements().size(), 3u);
  EXPECT_EQ(batch.opened_name, "");  // the caller opens and closes a batch stream
  EXPECT_EQ(batch.closes, 0);
}

void ExpectRaise(const std::function<void()>& call, const char* method, const char* message) {
  try {
    call();
    ADD_FAILURE() << "no exception for " << message;
  } catch (const exceptions::ExceptionBase& e) {
    EXPECT_EQ(e.File(), "TraceParser");
    EXPECT_EQ(e.ClassName(), "CTraceParser::Parse");
    EXPECT_EQ(e.Method(), method);
    EXPECT_EQ(e.Message(), message);
  }
}

TEST(CTraceParser, RaisesTheExactMessages) {
  parser::CTraceParser trace;
  ExpectRaise([&] { trace.Parse("/nonexistent/x.trc", 0); }, "fopen",
              "Trace parser failed to open parse file!");
  ExpectRaise([&] { trace.ParseBatch("/nonexistent/x.trc", 1, 0); }, "fopen",
              "Trace parser failed to open parse file.");
  const TempFile file("x\n");
  ExpectRaise([&] { trace.Parse(file.path(), ~std::uint64_t{0}); }, "fopen",
              "Trace parser failed to move file cursor to offset!");
  StringLineSource refusing({}, false);
  ExpectRaise([&] { trace.ParseStream(refusing, "x.trc", 0); }, "OpenLines",
              "Trace parser failed to open parse file!");
}

TEST(CTraceParser, SizeLimitLineEndsTheParseKeepingWhatWasFiled) {
  const TempFile file("*** TRACE DUMP CONTINUED FROM FILE  ***\n" +
                      CursorBlock(1, "select 1 from dual") +
                      "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n" +
                      CursorBlock(2, "select 2 from dual"));
  parser::CTraceParser trace;
  ExpectRaise([&] { trace.ParseBatch(file.path(), 0, 0); }, "Parse",
              "Trace file has reached max_dump_file_size!");
  EXPECT_EQ(SqlTexts(trace.OpenStatements()), (Texts{"select 1 from dual\n"}));
  // The file stays open: the next batch goes on behind the line that raised.
  EXPECT_FALSE(trace.ParseBatch(file.path(), 5, 0));
  EXPECT_EQ(SqlTexts(trace.ClosedStatements()),
            (Texts{"select 1 from dual\n", "select 2 from dual\n"}));
}

TEST(CTraceParser, SettingsForTheWriters) {
  parser::SortOptions options(true, false, true, 3);
  parser::CTraceParser trace(&options, true);
  EXPECT_FALSE(trace.HasVersion());
  EXPECT_EQ(trace.GetSortOptions(), &options);
  EXPECT_TRUE(trace.IsAggregated());
  trace.SetOutputDirectory("out");
#ifdef _WIN32
  EXPECT_EQ(trace.OutputDirectory(), "out\\");
#else
  EXPECT_EQ(trace.OutputDirectory(), "out/");
#endif
  parser::CTraceParser named("select ename", "9.2.0.4.0");
  EXPECT_TRUE(named.HasVersion());
  EXPECT_EQ(named.StatementId(), "select ename");
}

}  // namespace
