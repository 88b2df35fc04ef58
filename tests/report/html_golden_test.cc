// The HTML page of the 8i fixture, whole: any change to the page shows here first (write the
// new page with PELICOR_WRITE_GOLDEN=1 and read the difference before keeping it).
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "report/html_report.h"
#include "report_fixtures.h"

namespace {

TEST(HtmlReport, Oracle8iPageWhole) {
  const std::filesystem::path golden = std::filesystem::path(PELICOR_TEST_DATA) / "oracle8i.html";
  const std::string page =
      report::HtmlReport(report_test::ProfileOf(report_test::kOracle8i), report::HtmlOptions{});
  if (std::getenv("PELICOR_WRITE_GOLDEN") != nullptr) pelicor_test::WriteWholeFile(golden, page);
  EXPECT_EQ(page, pelicor_test::ReadWholeFile(golden));
}

TEST(HtmlReport, BarWidthsFollowTheShares) {
  EXPECT_DOUBLE_EQ(report::ProfileBarWidth(0.25), 75.0);
  EXPECT_DOUBLE_EQ(report::ProfileBarWidth(-0.1), 0.0);  // an overshoot draws no bar
  EXPECT_DOUBLE_EQ(report::ProfileBarWidth(1.5), 300.0);
}

}  // namespace
