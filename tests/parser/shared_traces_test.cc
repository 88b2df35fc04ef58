// The real traces of the shared development folder (Oracle 10.2 to 19c, not part of the
// repository): each parses to the end and gives well-formed documents, and the 11.1.0.6 trace
// gives the figures of Oracle's own TKPROF report of it. Skipped when the folder is missing.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "parser/trace_parser.h"
#include "parser/xml_paths.h"
#include "writer_fixtures.h"

namespace {

namespace fs = std::filesystem;

fs::path SharedTraces() {
  return fs::path(PELICOR_SHARED_TRACES);
}

TEST(SharedTraces, EveryTraceGivesWellFormedDocuments) {
  if (!fs::is_directory(SharedTraces())) GTEST_SKIP() << "no " << SharedTraces();
  for (const auto& entry : fs::directory_iterator(SharedTraces())) {
    if (entry.path().extension() != ".trc") continue;
    SCOPED_TRACE(entry.path().filename().string());
    const pelicor_test::ScratchDir dir;
    const std::string trace = dir.File(entry.path().filename().string());
    fs::copy_file(entry.path(), trace);
    parser::CTraceParser parser;
    parser.SetOutputDirectory(dir.path().string());
    try {
      parser.Parse(trace, 0);
    } catch (const std::exception& e) {
      FAIL() << e.what();
    }
    EXPECT_TRUE(parser.NewerForms());
    EXPECT_EQ(parser.TimeDivisor(), 1000000);
    const std::string name = entry.path().filename().string();
    parser.CreateXML(name);
    writer_test::ReadXml(parser::CallXmlPath(name, parser.OutputDirectory()));
    // Some files start after their cursors were parsed (stray_close.trc): nothing to aggregate.
    if (parser.ClosedStatements().empty()) continue;
    parser.CreateTkprofXML(trace);
    writer_test::ReadXml(parser::AggregatedXmlPath(trace));
  }
}

// Seconds as TKPROF prints them: cut, not rounded, to hundredths (7000 us shows as 0.00).
std::string Seconds(double microseconds) {
  const auto hundredths = static_cast<long long>(microseconds) / 10000;
  char text[40];
  std::snprintf(text, sizeof text, "%lld.%02lld", hundredths / 100, hundredths % 100);
  return text;
}

// One row of a TKPROF call table: count, cpu, elapsed, disk, query, current, rows.
std::string Row(const parser::CallTotals& totals) {
  return std::to_string(totals.count) + " " + Seconds(totals.cpu) + " " + Seconds(totals.elapsed) +
         " " + std::to_string(totals.disk) + " " + std::to_string(totals.query) + " " +
         std::to_string(totals.current) + " " + std::to_string(totals.rows);
}

struct CallTable {
  parser::CallTotals parse, exec, fetch;
};

// Sums the statements that `take` picks, kind by kind.
template <typename Pick>
CallTable Sum(const parser::StatementList& statements, Pick take) {
  CallTable table;
  for (const auto& statement : statements) {
    if (!take(*statement)) continue;
    table.parse.Add(statement->totals[parser::kParseTotals]);
    table.exec.Add(statement->totals[parser::kExecTotals]);
    table.fetch.Add(statement->totals[parser::kFetchTotals]);
  }
  return table;
}

void ExpectTable(const CallTable& table, const char* parse, const char* exec, const char* fetch) {
  EXPECT_EQ(Row(table.parse), parse);
  EXPECT_EQ(Row(table.exec), exec);
  EXPECT_EQ(Row(table.fetch), fetch);
}

// DBM11106_ora_6334.tkprof.txt (TKPROF 11.1.0.6, sort=prsela,exeela,fchela).
TEST(SharedTraces, Oracle11106TraceAgreesWithTkprof) {
  const fs::path trace = SharedTraces() / "DBM11106_ora_6334.trc";
  if (!fs::exists(trace)) GTEST_SKIP() << "no " << trace;
  parser::CTraceParser parser;
  parser.Parse(trace.string(), 0);
  const parser::StatementList& all = parser.ClosedStatements();
  const auto depth = [](int dep) {
    return [dep](const parser::TraceStatement& s) { return (s.header.dep > 0) == (dep > 0); };
  };
  SCOPED_TRACE("OVERALL TOTALS FOR ALL NON-RECURSIVE STATEMENTS");
  ExpectTable(Sum(all, depth(0)), "1 0.00 0.04 0 0 0 0", "2 0.01 0.01 13 55 0 2",
              "0 0.00 0.00 0 0 0 0");
  SCOPED_TRACE("OVERALL TOTALS FOR ALL RECURSIVE STATEMENTS");
  ExpectTable(Sum(all, depth(1)), "313 0.01 0.02 0 0 0 0", "999 0.24 0.45 1 3 4 1",
              "1914 1.17 5.13 2733 5294 0 19202");

  const auto text = [](const char* part) {
    return [part](const parser::TraceStatement& s) {
      return s.SqlText().find(part) != std::string::npos;
    };
  };
  SCOPED_TRACE("g4h8jndhd8vst");
  ExpectTable(Sum(all, text("SUM(AMOUNT_SOLD) FROM SH.SALES WHERE CHANNEL_ID = :B1")),
              "1 0.00 0.00 0 0 0 0", "1 0.04 0.19 0 0 0 0", "164 1.09 4.50 2590 1720 0 16348");
  SCOPED_TRACE("the PL/SQL block");
  ExpectTable(Sum(all, text("l_channel_id sh.sales.channel_id%TYPE := 3;")), "1 0.00 0.04 0 0 0 0",
              "1 0.01 0.00 0 0 0 1", "0 0.00 0.00 0 0 0 0");
  SCOPED_TRACE("18tv0vxvb6u85");
  ExpectTable(Sum(all, text("select dimobj#, col# from dimattr$")), "1 0.00 0.00 0 0 0 0",
              "1 0.00 0.00 0 0 0 0", "1 0.00 0.03 5 7 0 0");
}

}  // namespace
