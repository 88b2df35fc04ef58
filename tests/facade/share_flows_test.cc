// What only the file-share methods do: copies that are not checked, an empty working directory
// that is the current one, and the failures of a lookup.
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class ShareFlowsTest : public FacadeTest {};

// Hosts look for the copy themselves: a file that is not there is not reported.
TEST_F(ShareFlowsTest, CopiesAreNotCheckedAndGoToTheCurrentDirectoryWithoutAWorkingOne) {
  AddTrace(udump());
  EXPECT_EQ(service_.NfsGetTraceFile("gone.trc", &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  ASSERT_EQ(service_.SetWorkingDir("", &msg_), 0);
  EXPECT_EQ(service_.NfsGetTraceFile(kTrace, &msg_), 0);
  EXPECT_EQ(ReadWholeFile(root() / kTrace), Fixture(kTrace));
}

TEST_F(ShareFlowsTest, FailedLookupHandsOutNoNameAndKeepsTheOffset) {
  AddTrace(udump(), "orcl_ora_12.trc");
  AddTrace(udump(), "orcl_ora_123.trc");
  out_ = "stale";
  EXPECT_EQ(service_.NfsGetTraceFilePID("1", 1, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "NFS did not find a matched trace file for the session!");
  EXPECT_EQ(out_, "");
  EXPECT_EQ(service_.StartOffset(), 0u);
  EXPECT_TRUE(fs::is_empty(work()));
  ASSERT_EQ(service_.NfsSetConnectInfo(nullptr, &msg_), 0);
  EXPECT_EQ(service_.NfsGetTraceFileList(0, &msg_), 1);
  EXPECT_EQ(msg_, "NFS working dir or qualified trace path is not set!");
}

}  // namespace
}  // namespace facade_test
