// Whole documents from small traces written the way each Oracle release writes them: the
// call-by-call document, the aggregated and the sorted documents and the text report, compared
// byte for byte with the files beside each trace in the test data. After a deliberate change,
// PELICOR_UPDATE_GOLDEN=1 rewrites those files; read the difference before committing it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "parser/trace_parser.h"
#include "parser/xml_paths.h"
#include "writer_fixtures.h"

namespace {

namespace fs = std::filesystem;

struct Fixture {
  const char* name;          // data/<name>.trc
  const char* statement_id;  // picks exactly one statement for the sorted document
};

void Compare(const std::string& actual, const std::string& golden_name) {
  const fs::path golden = fs::path(PELICOR_TEST_DATA) / golden_name;
  if (std::getenv("PELICOR_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(golden, std::ios::binary) << actual;
    return;
  }
  EXPECT_EQ(actual, pelicor_test::ReadWholeFile(golden)) << golden;
}

// A parse that keeps only what the aggregated documents and the report read (summary only)
// gives the same bytes as the full parse; only the full parse writes the call document.
void CheckDocuments(const Fixture& fixture) {
  for (const bool summary_only : {false, true}) {
    SCOPED_TRACE(std::string(fixture.name) + (summary_only ? " (summary only)" : ""));
    if (summary_only && std::getenv("PELICOR_UPDATE_GOLDEN") != nullptr) return;
    const pelicor_test::ScratchDir dir;
    const std::string base = fixture.name;
    const std::string trace = dir.File(base + ".trc");
    fs::copy_file(fs::path(PELICOR_TEST_DATA) / (base + ".trc"), trace);

    const parser::SortOptions options(true, true, true, 2);
    parser::CTraceParser parser(&options, true);
    parser.SetSummaryOnly(summary_only);
    parser.SetOutputDirectory(dir.path().string());
    parser.SetStatementId(fixture.statement_id);
    parser.Parse(trace, 0);
    parser.SortClosedStatements();

    // Written in this order because each document adds into the grand totals of the next.
    if (!summary_only) {
      parser.CreateXML(base + ".trc");
      Compare(writer_test::ReadXml(dir.File(base + ".xml")), base + ".calls.xml");
    }
    parser.CreateTkprofXML(trace);
    Compare(writer_test::ReadXml(parser::AggregatedXmlPath(trace)), base + ".tkprof.xml");
    parser.CreateSortedXML(trace);
    Compare(writer_test::ReadXml(parser::AggregatedXmlPath(trace)), base + ".sorted.xml");
    std::ostringstream report;
    parser.WriteTextReport(report);
    Compare(report.str(), base + ".report.txt");
  }
}

TEST(ReleaseGolden, Oracle9iTrace) {
  CheckDocuments({"release_9i", "ord_id"});
}

// 10.2: kkscoacd, named waits; 11.2: plh=, CLOSE, XCTEND tim, a wait between BINDS and EXEC;
// 12.2: ISO timestamps, str=, a national character value; 19c: Version line, a timestamp inside
// a bind block, cursor 2^64-1, LOB and ERROR lines, calls of a cursor parsed before the file.
// Each has a PL/SQL call or a query whose recursive calls its own figures must leave out.
TEST(ReleaseGolden, Oracle10gTo19cTraces) {
  const Fixture fixtures[] = {{"release_10_2", "SUM(AMOUNT)"},
                              {"release_11_2", "update customers"},
                              {"release_12c", "employees e join"},
                              {"release_19c", "cart_id"}};
  for (const Fixture& fixture : fixtures) CheckDocuments(fixture);
}

}  // namespace
