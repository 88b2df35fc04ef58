#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "support/activity_log.h"

namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class FakeOracleHandle : public exceptions::OracleErrorSource {
 public:
  std::int32_t LastError(std::string* text) override {
    *text = "ORA-00942: table or view does not exist";
    return 942;
  }
  void ResetError() override { reset = true; }
  bool reset = false;
};

TEST(ExceptionBase, KeepsItsFourTextsAndZeroCodes) {
  const exceptions::ExceptionBase e("TraceParser", "CTraceParser::Parse", "fopen",
                                    "Trace parser failed to open parse file!");
  EXPECT_EQ(e.File(), "TraceParser");
  EXPECT_EQ(e.ClassName(), "CTraceParser::Parse");
  EXPECT_EQ(e.Method(), "fopen");
  EXPECT_EQ(e.Message(), "Trace parser failed to open parse file!");
  EXPECT_EQ(e.Status(), 0);
  EXPECT_EQ(e.ErrorCode(), 0);
  EXPECT_EQ(e.Category(), 0);
}

TEST(OracleException, TakesTheHandlesTextAndCodeAndResetsIt) {
  FakeOracleHandle handle;
  try {
    throw exceptions::OracleException(handle, "UtlManager", "CUtlManager::Connect", "Connect");
  } catch (const exceptions::ExceptionBase& e) {
    EXPECT_EQ(e.Message(), "ORA-00942: table or view does not exist");
    EXPECT_EQ(e.ErrorCode(), 942);
    EXPECT_EQ(e.Category(), 3);
  }
  EXPECT_TRUE(handle.reset);
}

TEST(ActivityLog, WritesOneRecordPerExceptionOnlyWhileOn) {
  const auto path = std::filesystem::temp_directory_path() / "pelicor_activity_test.xml";
  std::string error;
  exceptions::ExceptionBase before("a", "b", "c", "not logged");
  ASSERT_TRUE(support::ActivityLog::Enable(path.string(), &error)) << error;
  exceptions::ExceptionBase logged("Pelicor", "ConvertFilename", "ConvertFilename",
                                   "Filename does not contain '.trc' !");
  support::ActivityLog::Disable();
  exceptions::ExceptionBase after("a", "b", "c", "not logged either");

  const std::string log = ReadFile(path);
  EXPECT_NE(log.find("<MESSAGE>Pelicor - ConvertFilename - ConvertFilename - Filename does not "
                     "contain '.trc' !</MESSAGE>"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("method=\"ExceptionBase (Constructor)\""), std::string::npos);
  EXPECT_EQ(log.find("not logged"), std::string::npos);
  EXPECT_EQ(log.rfind("</ACTIVITYLOG>\n"), log.size() - 15);
  std::filesystem::remove(path);
}

TEST(ActivityLog, ReportsAFileThatCannotBeCreated) {
  std::string error;
  EXPECT_FALSE(support::ActivityLog::Enable("/nonexistent-dir/log.xml", &error));
  EXPECT_NE(error.find("/nonexistent-dir/log.xml"), std::string::npos);
  EXPECT_FALSE(support::ActivityLog::IsEnabled());
}

}  // namespace
