#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <string>

#include "scratch.h"
#include "support/activity_log.h"

namespace {

class FakeOracleHandle : public exceptions::OracleErrorSource {
 public:
  std::int32_t LastError(std::string* text) override {
    *text = "ORA-00942: table or view does not exist";
    return 942;
  }
  void ResetError() override { reset = true; }
  bool reset = false;
};

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
  const pelicor_test::ScratchDir dir;
  const std::string path = dir.File("activity.xml");
  std::string error;
  exceptions::ExceptionBase before("a", "b", "c", "not logged");
  ASSERT_TRUE(support::ActivityLog::Enable(path, &error)) << error;
  exceptions::ExceptionBase logged("Pelicor", "ConvertFilename", "ConvertFilename",
                                   "Filename does not contain '.trc' !");
  support::ActivityLog::Disable();
  exceptions::ExceptionBase after("a", "b", "c", "not logged either");

  const std::string log = pelicor_test::ReadTextFile(path);
  EXPECT_NE(log.find("<MESSAGE>Pelicor - ConvertFilename - ConvertFilename - Filename does not "
                     "contain '.trc' !</MESSAGE>"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("method=\"ExceptionBase (Constructor)\""), std::string::npos);
  EXPECT_EQ(log.find("not logged"), std::string::npos);
  EXPECT_EQ(log.rfind("</ACTIVITYLOG>\n"), log.size() - 15);
}

TEST(ActivityLog, ReportsAFileThatCannotBeCreated) {
  std::string error;
  EXPECT_FALSE(support::ActivityLog::Enable("/nonexistent-dir/log.xml", &error));
  EXPECT_NE(error.find("/nonexistent-dir/log.xml"), std::string::npos);
  EXPECT_FALSE(support::ActivityLog::IsEnabled());
}

}  // namespace
