// Damaged, cut and hostile traces parse without crash, hang or error (only the size-limit line
// raises), and generated traces file exactly what their generator wrote.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "parser/trace_parser.h"
#include "parser_fixture.h"
#include "support/exceptions.h"
#include "trace_generator.h"

namespace {

struct Filed {
  std::uint64_t statements = 0, parse = 0, exec = 0, fetch = 0, waits = 0, binds = 0, stats = 0;
};

Filed Count(const parser::StatementList& list) {
  Filed filed;
  for (const auto& statement : list) {
    ++filed.statements;
    filed.parse += statement->parse_calls.size();
    filed.exec += statement->exec_calls.size();
    filed.fetch += statement->fetch_calls.size();
    filed.waits += statement->waits.size();
    filed.binds += statement->binds.size();
    filed.stats += statement->stats.size();
  }
  return filed;
}

void ExpectFiledAsGenerated(const parser::StatementList& list,
                            const tracegen::GeneratedCounts& expected) {
  const Filed filed = Count(list);
  EXPECT_EQ(filed.statements, expected.statements);
  EXPECT_EQ(filed.parse, expected.parse_calls);
  EXPECT_EQ(filed.exec, expected.exec_calls);
  EXPECT_EQ(filed.fetch, expected.fetch_calls);
  EXPECT_EQ(filed.waits, expected.waits);
  EXPECT_EQ(filed.binds, expected.binds);
  EXPECT_EQ(filed.stats, expected.stats);
}

TEST(GeneratedTrace, EveryRecordIsFiledUnderItsStatement) {
  tracegen::GeneratorOptions options;
  options.target_bytes = 3 << 20;
  options.process_line_every = 40;
  options.long_sql_percent = 5;
  for (const bool crlf : {false, true}) {
    options.crlf = crlf;
    const TempFile file;
    tracegen::GeneratedCounts expected;
    ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, &expected));
    parser::CTraceParser trace;
    trace.Parse(file.path(), 0);
    ExpectFiledAsGenerated(trace.ClosedStatements(), expected);
    EXPECT_EQ(trace.TimeDivisor(), 1000000);
  }
}

TEST(GeneratedTrace, Oracle19cTraceIsFiledWhole) {
  tracegen::GeneratorOptions options;
  options.format = tracegen::TraceFormat::kOracle19c;
  options.target_bytes = 2 << 20;
  options.process_line_every = 40;
  for (const bool crlf : {false, true}) {
    options.crlf = crlf;
    const TempFile file;
    tracegen::GeneratedCounts expected;
    ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, &expected));
    parser::CTraceParser trace;
    trace.Parse(file.path(), 0);
    ExpectFiledAsGenerated(trace.ClosedStatements(), expected);
    EXPECT_TRUE(trace.NewerForms());
    EXPECT_EQ(trace.BannerMajorVersion(), 19);
  }
}

TEST(GeneratedTrace, BatchesFileTheSameAsOneParse) {
  tracegen::GeneratorOptions options;
  options.target_bytes = 1 << 20;
  const TempFile file;
  tracegen::GeneratedCounts expected;
  ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, &expected));
  parser::CTraceParser trace;
  Filed total;
  bool more = true;
  for (int calls = 0; more && calls < 100000; ++calls) {
    more = trace.ParseBatch(file.path(), 50, 0);
    EXPECT_LE(trace.ClosedStatements().size(), 51u);
    const Filed batch = Count(trace.ClosedStatements());
    total.statements += batch.statements;
    total.waits += batch.waits;
    total.binds += batch.binds;
    trace.ClearClosedStatements();
  }
  EXPECT_FALSE(more);
  EXPECT_EQ(total.statements, expected.statements);
  EXPECT_EQ(total.waits, expected.waits);
  EXPECT_EQ(total.binds, expected.binds);
}

TEST(GeneratedTrace, SizeLimitLineRaisesAfterEverythingBeforeItIsFiled) {
  tracegen::GeneratorOptions options;
  options.target_bytes = 200000;
  options.size_limit_line = true;
  const TempFile file;
  tracegen::GeneratedCounts expected;
  ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, &expected));
  parser::CTraceParser trace;
  EXPECT_THROW(trace.Parse(file.path(), 0), exceptions::ExceptionBase);
  trace.CloseAll();
  ExpectFiledAsGenerated(trace.ClosedStatements(), expected);
}

// Traces that must parse to the end without an exception.
TEST(BadInput, DamagedTracesParseQuietly) {
  const std::string header =
      "PARSING IN CURSOR #1 len=20 dep=0 uid=5 oct=3 lid=5 tim=1 hv=1 ad='a'\n";
  const std::string texts[] = {
      "",
      "\n\n\n",
      header,             // cut before the SQL text
      header + "select",  // cut inside it
      header + "select 1 from dual\nBINDS #1:\n bind 0: dty=2 mxl=22(22) mal=00 sc",  // in BINDS
      header + "select 1 from dual\nBINDS #1:\n bind 0: dty=2\n   bfp=0a bln=22",
      "BINDS #1:\n bind\n bind\n",
      "PARSING IN CURSOR #1 len=2147483647 dep=0\nselect\n1\n",  // len beyond the file
      "PARSING IN CURSOR #1 len=-2147483648 dep=0\nEXEC #1:c=1\n",
      "PARSING IN CURSOR #-1 len=5 dep=0\nEXEC #-1:c=1\nWAIT #99999999999999999999999: nam='x' "
      "ela= 9223372036854775807\n"
      "WAIT #99999999999999999999999: nam='x' ela= 9223372036854775807\n",
      "EXEC #5:c=1,e=2\nFETCH #5:c=1\nSTAT #5 id=1\nWAIT #5: nam='x' ela= 1\nBINDS #5:\n bind 0: "
      "dty=1\n",
      "PARSE ERROR #2:len=99999 dep=0 uid=-1 oct=99999999999999999999999\nshort\n",
      "STAT #1 op='\nWAIT #1: nam='\nWAIT #1: nam=\nW\nP\nPARSE\nO\nOr\n*** S)\n*** S)",
      std::string(5000, 'W') + "\n" + std::string(3000, '*') + "\n",
      std::string("EXEC #1:c=5\0,e=7\nPARSING IN\0 CURSOR #1\n", 40),
  };
  for (const std::string& text : texts) {
    const TempFile file(text);
    parser::CTraceParser trace;
    EXPECT_NO_THROW(trace.Parse(file.path(), 0)) << text.substr(0, 60);
  }
}

TEST(BadInput, NulByteEndsTheLine) {
  const TempFile file(CursorBlock(1, "select 1 from dual") +
                      std::string("EXEC #1:c=5,e=7\0,p=3,cr=4\n", 26));
  parser::CTraceParser trace;
  trace.Parse(file.path(), 0);
  const parser::ExecCallRecord& exec = trace.ClosedStatements().front()->exec_calls.at(0);
  EXPECT_EQ(exec.e, 7);
  EXPECT_EQ(exec.p, -1);
}

TEST(BadInput, LongLinesArriveInPiecesAndSqlTextStaysWhole) {
  const std::string sql = "select " + std::string(3000, 'x') + " from dual";
  const TempFile file(CursorBlock(1, sql) + "WAIT #1: nam='" + std::string(2000, 'n') +
                      "' ela= 5 p1=0 p2=0 p3=0\n");
  parser::CTraceParser trace;
  trace.Parse(file.path(), 0);
  const parser::TraceStatement& statement = *trace.ClosedStatements().front();
  EXPECT_EQ(statement.header.text, sql + "\n");
  // Only the first 1023 bytes of the WAIT line are a WAIT line: no "ela" in them.
  ASSERT_EQ(statement.waits.size(), 1u);
  EXPECT_EQ(statement.waits[0].nam, "");
  EXPECT_EQ(statement.waits[0].ela, 0);
}

TEST(BadInput, BinaryGarbage) {
  std::mt19937_64 random(42);
  std::string garbage(1 << 20, '\0');
  for (char& c : garbage) c = static_cast<char>(random() % 256);
  // Sprinkle line starts that reach the scanners.
  for (std::size_t at = 0; at + 40 < garbage.size(); at += 997) {
    garbage.replace(at, 10, random() % 2 ? "\nBINDS #0:" : "\nWAIT #00:");
  }
  const TempFile file(garbage);
  parser::CTraceParser trace;
  EXPECT_NO_THROW(trace.Parse(file.path(), 0));
}

}  // namespace
