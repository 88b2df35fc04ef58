// The profile of the real 11.1.0.6 trace of the shared folder against Oracle's own TKPROF
// report of it: each statement's "Event waited on" table, and the overall tables of the
// session. Skipped when the folder is missing.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "report/figures_format.h"
#include "report/profiling_parser.h"
#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;

struct TkprofWait {
  std::uint64_t count = 0;
  std::string max, total;  // seconds as TKPROF prints them
};
using WaitTable = std::map<std::string, TkprofWait>;

struct TkprofReport {
  std::map<std::string, WaitTable> statements;  // by sql_id, else the first line of SQL text
  std::vector<WaitTable> overall;               // non-recursive, then recursive
};

std::string Trimmed(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  while (!text.empty() && text.front() == ' ') text.erase(0, 1);
  return text;
}

//   Event waited on                             Times   Max. Wait  Total Waited
//   ----------------------------------------   Waited  ----------  ------------
//   db file sequential read                        32        0.02          0.13
WaitTable ReadWaitTable(const std::vector<std::string>& lines, std::size_t from) {
  WaitTable table;
  for (std::size_t i = from; i < lines.size() && lines[i].size() > 44 && lines[i][0] == ' '; ++i) {
    std::istringstream figures(lines[i].substr(44));
    TkprofWait wait;
    figures >> wait.count >> wait.max >> wait.total;
    table[Trimmed(lines[i].substr(2, 42))] = wait;
  }
  return table;
}

TkprofReport ReadTkprof(const fs::path& path) {
  std::vector<std::string> lines;
  std::istringstream text(pelicor_test::ReadWholeFile(path));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  TkprofReport report;
  std::string key;
  bool want_key = false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    // Statements end at a line of asterisks, or of dashes only.
    if (line.rfind("*****", 0) == 0 ||
        (line.size() >= 40 && line.find_first_not_of('-') == std::string::npos)) {
      want_key = true;
      key.clear();
    } else if (line.rfind("SQL ID : ", 0) == 0) {
      key = line.substr(9);
      want_key = false;
    } else if (want_key && !Trimmed(line).empty()) {
      key = report::OneLine(line, 40);
      want_key = false;
    } else if (line.find("Event waited on") != std::string::npos) {
      const WaitTable table = ReadWaitTable(lines, i + 2);
      if (key.rfind("OVERALL", 0) == 0) {
        report.overall.push_back(table);
      } else {
        report.statements[key] = table;
      }
    }
  }
  return report;
}

// TKPROF cuts seconds to hundredths: 7000 us shows as 0.00.
std::string Cut(report::Micros micros) {
  char text[40];
  std::snprintf(text, sizeof text, "%.2f", static_cast<double>(micros / 10000) / 100);
  return text;
}

TEST(TkprofWaits, EveryStatementsWaitsAsOraclesTkprofShowsThem) {
  const fs::path folder(PELICOR_SHARED_TRACES);
  const fs::path tkprof = folder / "DBM11106_ora_6334.tkprof.txt";
  if (!fs::exists(tkprof)) GTEST_SKIP() << "no " << tkprof;
  const TkprofReport expected = ReadTkprof(tkprof);
  ASSERT_GE(expected.statements.size(), 3u);
  ASSERT_EQ(expected.overall.size(), 2u);

  report::ProfilingParser parser;
  parser.Parse((folder / "DBM11106_ora_6334.trc").string(), 0);
  const report::Profile profile = parser.TakeProfile();

  for (const auto& [key, table] : expected.statements) {
    SCOPED_TRACE(key);
    const report::StatementProfile* found = nullptr;
    for (const auto& s : profile.statements) {
      if (s.sql_id == key || report::OneLine(s.sql_text, 40).rfind(key.substr(0, 30), 0) == 0) {
        found = &s;
      }
    }
    ASSERT_NE(found, nullptr);
    ASSERT_EQ(found->waits.size(), table.size());
    for (const report::EventFigures& wait : found->waits) {
      const auto row = table.find(wait.name);
      ASSERT_NE(row, table.end()) << wait.name;
      EXPECT_EQ(wait.count, row->second.count) << wait.name;
      EXPECT_EQ(Cut(wait.max), row->second.max) << wait.name;
      EXPECT_EQ(Cut(wait.total), row->second.total) << wait.name;
    }
  }
  // The session's events are the two overall tables together.
  for (const report::EventFigures& event : profile.events) {
    SCOPED_TRACE(event.name);
    std::uint64_t count = 0;
    double total = 0;
    for (const WaitTable& table : expected.overall) {
      const auto row = table.find(event.name);
      if (row == table.end()) continue;
      count += row->second.count;
      total += std::stod(row->second.total);
    }
    EXPECT_EQ(event.count, count);
    EXPECT_NEAR(static_cast<double>(event.total) / 1e6, total, 0.02);
  }
}

}  // namespace
