// CTraceParser: the dispatcher's filing of records under statements, the statement table, and
// the parse forms, on small traces written here.
#include "parser/trace_parser.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "../support/raised.h"
#include "parser/statement_table.h"
#include "parser_fixture.h"

namespace {

using pelicor_test::Raised;

using Texts = std::vector<std::string>;

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

// With merging, a header whose SQL text a closed statement has continues that statement under
// the new cursor (its header stays the first one); a later header on that cursor closes it, and
// lines of its old cursor no longer reach it. Without merging, every header is a statement.
TEST(CTraceParser, MergeIdenticalSqlReopensTheClosedStatementUnderItsNewCursor) {
  const std::string exec = "EXEC #7:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n";
  const std::string text =
      CursorBlock(1, "select 1 from dual") + CursorBlock(1, "select 2 from dual") +
      CursorBlock(7, "select 1 from dual") + exec + CursorBlock(3, "select 3 from dual") +
      "EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n" +
      CursorBlock(7, "select 4 from dual") +
      "EXEC #3:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=6\n";
  const TempFile file(text);
  parser::CTraceParser merged;
  merged.SetMergeIdenticalSql(true);
  merged.Parse(file.path(), 0);
  EXPECT_EQ(SqlTexts(merged.ClosedStatements()),
            (Texts{"select 1 from dual\n", "select 2 from dual\n", "select 3 from dual\n",
                   "select 4 from dual\n"}));
  std::vector<std::size_t> execs;
  for (const auto& statement : merged.ClosedStatements()) {
    execs.push_back(statement->exec_calls.size());
  }
  EXPECT_EQ(execs, (std::vector<std::size_t>{1, 1, 1, 0}));
  const parser::TraceStatement& reopened = *merged.ClosedStatements().front();
  EXPECT_EQ(reopened.sequence, 0);
  EXPECT_EQ(reopened.cursor, 7u);
  EXPECT_EQ(reopened.header.cursor, 1u);

  parser::CTraceParser plain;
  plain.Parse(file.path(), 0);
  EXPECT_EQ(plain.ClosedStatements().size(), 5u);
}

// Shared-server traces and cursor leaks keep hundreds of thousands of cursors open at once;
// each lookup finds its statement without walking the others (a search of the open list took
// hours here). A million distinct cursor numbers, 125000 open at a time.
TEST(StatementTable, AMillionDistinctCursorsFindTheirStatements) {
  constexpr parser::CursorNo kFirst = 140736410372616;  // cursors are addresses from 11.2.0.2 on
  constexpr std::size_t kOpenAtOnce = 125000;
  constexpr std::size_t kRounds = 8;
  parser::StatementTable table;
  std::size_t mismatched = 0;
  for (std::size_t round = 0; round < kRounds; ++round) {
    const parser::CursorNo base = kFirst + round * kOpenAtOnce * 8;
    for (std::size_t i = 0; i < kOpenAtOnce; ++i) table.OpenNew(base + i * 8);
    // Last opened first: the order a search from the front of the open list finds slowest.
    for (std::size_t i = kOpenAtOnce; i-- > 0;) {
      const parser::TraceStatement* found = table.ForCursor(base + i * 8);
      if (found == nullptr || found->cursor != base + i * 8 ||
          found->sequence != static_cast<std::int64_t>(round * kOpenAtOnce + i)) {
        ++mismatched;
      }
    }
    if (table.ForCursor(base + 4) != nullptr) ++mismatched;  // never opened
    // Close every other one by cursor, the rest oldest first.
    for (std::size_t i = 0; i < kOpenAtOnce; i += 2) table.CloseCursor(base + i * 8);
    if (table.open().size() != kOpenAtOnce / 2) ++mismatched;
    table.Cache(0, nullptr);  // so that the next lookup asks the index
    if (table.ForCursor(base) != nullptr || table.ForCursor(base + 8) == nullptr) ++mismatched;
    table.CloseAll();
    if (table.closed().size() != kOpenAtOnce ||
        table.closed().back()->cursor != base + (kOpenAtOnce - 1) * 8) {
      ++mismatched;
    }
    table.ClearClosed();
  }
  EXPECT_EQ(mismatched, 0u);
  EXPECT_EQ(table.statements_made(), static_cast<std::int64_t>(kOpenAtOnce * kRounds));
}

// Merging identical SQL looks every new header's text up among the closed statements: the first
// of the closed list with that text comes back, also after the list was reordered, and a trace
// of a few hundred thousand distinct statements does not walk the list each time.
TEST(StatementTable, ReopensTheFirstClosedStatementWithTheText) {
  parser::StatementTable table;
  const auto open = [&table](parser::CursorNo cursor, const std::string& text) {
    parser::TraceStatement* statement = table.OpenNew(cursor);
    statement->header.text = text;
    return statement;
  };
  parser::TraceStatement* a = open(1, "x");
  parser::TraceStatement* b = open(2, "x");
  open(3, "y");
  table.CloseCursor(2);
  table.CloseCursor(1);
  table.CloseCursor(3);  // closed: b a y
  EXPECT_EQ(table.ReopenBySqlText("x"), b);
  table.CloseAll();                          // closed: a y b
  EXPECT_EQ(table.ReopenBySqlText("x"), a);  // the first in the list, not the last closed
  table.CloseAll();                          // closed: y b a
  table.closed().reverse();                  // a b y
  EXPECT_EQ(table.ReopenBySqlText("x"), a);
  EXPECT_EQ(table.ReopenBySqlText("x"), b);
  EXPECT_EQ(table.ReopenBySqlText("x"), nullptr);
  EXPECT_EQ(table.ReopenBySqlText("z"), nullptr);
  table.CloseAll();
  table.ClearClosed();

  constexpr std::size_t kStatements = 300000;
  for (std::size_t i = 0; i < kStatements; ++i) open(i, "select " + std::to_string(i));
  table.CloseAll();
  std::size_t mismatched = 0;
  for (std::size_t i = kStatements; i-- > 0;) {
    const parser::TraceStatement* found = table.ReopenBySqlText("select " + std::to_string(i));
    if (found == nullptr || found->cursor != i) ++mismatched;
  }
  EXPECT_EQ(mismatched, 0u);
  EXPECT_TRUE(table.closed().empty());
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
  parser::CTraceParser past_end;
  past_end.Parse(file.path(), 100000);  // nothing to read is no error
  EXPECT_TRUE(past_end.ClosedStatements().empty());
}

TEST(CTraceParser, BatchFlagsSkipWaitsAndBinds) {
  const TempFile file(
      CursorBlock(1, "select 1 from dual") +
      "BINDS #1:\n"
      " bind 0: dty=2 mxl=22(21) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0\n"
      "EXEC #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=5\n"
      "WAIT #1: nam='x' ela= 1 p1=0 p2=0 p3=0\n");
  parser::CTraceParser trace;
  EXPECT_FALSE(trace.ParseBatch(file.path(), 0,
                                parser::kSkipWaits | parser::kSkipBinds | parser::kTopLevelOnly));
  ASSERT_EQ(trace.ClosedStatements().size(), 1u);
  const parser::TraceStatement& statement = *trace.ClosedStatements().front();
  EXPECT_TRUE(statement.waits.empty());
  EXPECT_TRUE(statement.binds.empty());
  EXPECT_EQ(statement.exec_calls.size(), 1u);
}

constexpr const char* kRaisedBy = "TraceParser|CTraceParser::Parse|";

TEST(CTraceParser, RaisesTheExactMessages) {
  parser::CTraceParser trace;
  for (const std::string& name :
       {std::string("/nonexistent/x.trc"), std::filesystem::temp_directory_path().string()}) {
    EXPECT_EQ(Raised([&] { trace.Parse(name, 0); }),
              kRaisedBy + std::string("fopen|Trace parser failed to open parse file!"));
  }
  EXPECT_EQ(Raised([&] { trace.ParseBatch("/nonexistent/x.trc", 1, 0); }),
            kRaisedBy + std::string("fopen|Trace parser failed to open parse file."));
  const TempFile file("x\n");
  EXPECT_EQ(Raised([&] { trace.Parse(file.path(), ~std::uint64_t{0}); }),
            kRaisedBy + std::string("fopen|Trace parser failed to move file cursor to offset!"));
  StringLineSource refusing({}, false);
  EXPECT_EQ(Raised([&] { trace.ParseStream(refusing, "x.trc", 0); }),
            kRaisedBy + std::string("OpenLines|Trace parser failed to open parse file!"));
}

TEST(CTraceParser, SizeLimitLineEndsTheParseKeepingWhatWasFiled) {
  const TempFile file("*** TRACE DUMP CONTINUED FROM FILE  ***\n" +
                      CursorBlock(1, "select 1 from dual") +
                      "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n" +
                      CursorBlock(2, "select 2 from dual"));
  parser::CTraceParser trace;
  EXPECT_EQ(Raised([&] { trace.ParseBatch(file.path(), 0, 0); }),
            kRaisedBy + std::string("Parse|Trace file has reached max_dump_file_size!"));
  EXPECT_EQ(SqlTexts(trace.OpenStatements()), (Texts{"select 1 from dual\n"}));
  // The file stays open: the next batch goes on behind the line that raised.
  EXPECT_FALSE(trace.ParseBatch(file.path(), 5, 0));
  EXPECT_EQ(SqlTexts(trace.ClosedStatements()),
            (Texts{"select 1 from dual\n", "select 2 from dual\n"}));
}

}  // namespace
