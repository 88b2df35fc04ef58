// Damaged, cut and hostile traces parse without crash, hang or error (only the size-limit line
// raises), and generated traces file exactly what their generator wrote.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "parser/trace_parser.h"
#include "parser_fixture.h"
#include "support/exceptions.h"
#include "trace_generator.h"

namespace {

// What was filed: statements, parse, exec and fetch calls, waits, binds and STAT rows.
using Filed = std::array<std::uint64_t, 7>;

Filed Count(const parser::StatementList& list) {
  Filed filed{};
  for (const auto& s : list) {
    // clang-format off
    const Filed one = {1, s->parse_calls.size(), s->exec_calls.size(), s->fetch_calls.size(),
                       s->waits.size(), s->binds.size(), s->stats.size()};
    // clang-format on
    for (std::size_t i = 0; i < filed.size(); ++i) filed[i] += one[i];
  }
  return filed;
}

// A generated trace in a file, and what its generator says a parser must file from it.
struct Generated {
  explicit Generated(const tracegen::GeneratorOptions& options) {
    EXPECT_TRUE(tracegen::WriteTraceFile(file.path(), options, &counts));
  }
  Filed Expected() const {
    return {counts.statements, counts.parse_calls, counts.exec_calls, counts.fetch_calls,
            counts.waits,      counts.binds,       counts.stats};
  }
  TempFile file;
  tracegen::GeneratedCounts counts;
};

TEST(GeneratedTrace, EveryRecordIsFiledUnderItsStatement) {
  for (const auto format : {tracegen::TraceFormat::kOracle9i, tracegen::TraceFormat::kOracle19c}) {
    for (const bool crlf : {false, true}) {
      tracegen::GeneratorOptions options;
      options.format = format;
      options.target_bytes = 2 << 20;
      options.process_line_every = 40;
      options.long_sql_percent = 5;
      options.crlf = crlf;
      const Generated trace_file(options);
      parser::CTraceParser trace;
      trace.Parse(trace_file.file.path(), 0);
      EXPECT_EQ(Count(trace.ClosedStatements()), trace_file.Expected()) << crlf;
      EXPECT_EQ(trace.NewerForms(), format == tracegen::TraceFormat::kOracle19c);
      EXPECT_EQ(trace.TimeDivisor(), 1000000);
    }
  }
}

TEST(GeneratedTrace, BatchesFileTheSameAsOneParse) {
  const Generated trace_file(tracegen::GeneratorOptions{});
  parser::CTraceParser trace;
  Filed total{};
  bool more = true;
  for (int calls = 0; more && calls < 100000; ++calls) {
    more = trace.ParseBatch(trace_file.file.path(), 50, 0);
    EXPECT_LE(trace.ClosedStatements().size(), 51u);
    const Filed batch = Count(trace.ClosedStatements());
    for (std::size_t i = 0; i < total.size(); ++i) total[i] += batch[i];
    trace.ClearClosedStatements();
  }
  EXPECT_FALSE(more);
  EXPECT_EQ(total, trace_file.Expected());
}

TEST(GeneratedTrace, SizeLimitLineRaisesAfterEverythingBeforeItIsFiled) {
  tracegen::GeneratorOptions options;
  options.target_bytes = 200000;
  options.size_limit_line = true;
  const Generated trace_file(options);
  parser::CTraceParser trace;
  EXPECT_THROW(trace.Parse(trace_file.file.path(), 0), exceptions::ExceptionBase);
  trace.CloseAll();
  EXPECT_EQ(Count(trace.ClosedStatements()), trace_file.Expected());
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

}  // namespace
