// The file-share flows on a real trace directory: listings, copies, the trace file of a
// process id, validation, start-up and the statement document that follows a start-up.
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class ShareFlowsTest : public FacadeTest {
 protected:
  std::uintmax_t TraceSize() const { return fs::file_size(udump() / kTrace); }
  // The statements the session writes after the start-up.
  void SessionGoesOn() const {
    const std::string trace = Fixture(kTrace);
    AppendFile(udump() / kTrace, trace.substr(trace.find("=====")));
  }
};

TEST_F(ShareFlowsTest, ListsTraceFilesIntoTheWorkingDirectory) {
  AddTrace(udump());
  AddTrace(udump(), "orcl_ora_77.trc");
  WriteWholeFile(udump() / "alert_orcl.log", "");
  EXPECT_EQ(service_.NfsGetTraceFileList(0, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(ReadWholeFile(work() / "NfsTraceFileList.txt"), "orcl_ora_4242.trc\norcl_ora_77.trc\n");

  EXPECT_EQ(service_.NfsGetTraceFileListPID("77", &msg_), 0);
  const std::string listing = ReadWholeFile(work() / "NfsTraceFileList.txt");
  EXPECT_NE(listing.find(std::to_string(TraceSize()) + " "), std::string::npos) << listing;
  EXPECT_NE(listing.find(" orcl_ora_77.trc\n"), std::string::npos) << listing;
  EXPECT_EQ(listing.find("4242"), std::string::npos) << listing;

  ASSERT_EQ(service_.NfsSetConnectInfo(nullptr, &msg_), 0);
  EXPECT_EQ(service_.NfsGetTraceFileList(0, &msg_), 1);
  EXPECT_EQ(msg_, "NFS working dir or qualified trace path is not set!");
}

TEST_F(ShareFlowsTest, GetTraceFileCopiesIntoTheWorkingDirectory) {
  AddTrace(udump());
  EXPECT_EQ(service_.NfsGetTraceFile(kTrace, &msg_), 0);
  EXPECT_EQ(ReadWholeFile(work() / kTrace), Fixture(kTrace));
  // A file that is not there is not reported: hosts look for the copy themselves.
  EXPECT_EQ(service_.NfsGetTraceFile("gone.trc", &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  // Without a working directory the copy lands in the current directory.
  ASSERT_EQ(service_.SetWorkingDir("", &msg_), 0);
  EXPECT_EQ(service_.NfsGetTraceFile(kTrace, &msg_), 0);
  EXPECT_EQ(ReadWholeFile(root() / kTrace), Fixture(kTrace));
}

TEST_F(ShareFlowsTest, TraceFileOfAPidSetsNameAndStartOffset) {
  AddTrace(udump());
  EXPECT_EQ(service_.NfsGetTraceFilePID("4242", 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(out_, kTrace);
  EXPECT_EQ(service_.TraceFileName(), kTrace);
  EXPECT_EQ(service_.StartOffset(), TraceSize());
  EXPECT_FALSE(fs::exists(work() / kTrace));
  EXPECT_EQ(service_.NfsGetTraceFilePID("4242", 1, &out_, &msg_), 0);
  EXPECT_EQ(ReadWholeFile(work() / kTrace), Fixture(kTrace));
}

TEST_F(ShareFlowsTest, TraceFileOfAPidFailsWithTheLookupsMessage) {
  AddTrace(udump(), "orcl_ora_12.trc");
  AddTrace(udump(), "orcl_ora_123.trc");
  EXPECT_EQ(service_.NfsGetTraceFilePID("1", 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "NFS did not find a matched trace file for the session!");
  EXPECT_EQ(out_, "");
  EXPECT_EQ(service_.StartOffset(), 0u);
  EXPECT_EQ(service_.NfsGetTraceFilePID("999", 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "NFS failed to open trace file for the session!");
}

// ParseFile reads only what the session wrote after the lookup.
TEST_F(ShareFlowsTest, ParseFileStartsAtTheOffsetOfTheLookup) {
  WriteWholeFile(udump() / kTrace, Fixture(kTrace).substr(0, Fixture(kTrace).find("=====")));
  ASSERT_EQ(service_.NfsGetTraceFilePID("4242", 0, &out_, &msg_), 0);
  SessionGoesOn();
  ASSERT_EQ(service_.NfsParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0);
  const std::string document = ReadWholeFile(work() / kXml);
  EXPECT_NE(document.find("update emp"), std::string::npos);
  EXPECT_EQ(document.find("2004-05-07"), std::string::npos);  // the header was before the offset
}

TEST_F(ShareFlowsTest, ValidationRemembersTheFileButNotTheDirectory) {
  const fs::path other = root() / "other";
  fs::create_directory(other);
  AddTrace(other);
  EXPECT_EQ(service_.NfsValidation(other.c_str(), "4242", &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(service_.Transport(), facade::kFileShare);
  EXPECT_EQ(service_.TraceFileName(), kTrace);
  EXPECT_EQ(service_.StartOffset(), fs::file_size(other / kTrace));
  EXPECT_EQ(service_.NfsInfo().GetUdump(), udump().string());
}

TEST_F(ShareFlowsTest, StartUpThenStatementDocumentOfWhatFollows) {
  AddTrace(udump());
  fs::path elsewhere = root() / "elsewhere";
  ASSERT_EQ(service_.NfsSetConnectInfo(elsewhere.c_str(), &msg_), 0);
  EXPECT_EQ(service_.ZantivNfsTrcStartUp(udump().c_str(), "4242", &out_, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(out_, kXml);
  EXPECT_EQ(service_.NfsInfo().GetUdump(), udump().string());
  EXPECT_EQ(service_.StartOffset(), TraceSize());
  EXPECT_EQ(service_.Transport(), facade::kFileShare);

  SessionGoesOn();
  EXPECT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  // The sorted form carries no SQL text: the update is the one statement with 12 current gets.
  const std::string document = ReadWholeFile(root() / kXml);
  EXPECT_EQ(document.find("<STATEMENT>"), document.rfind("<STATEMENT>"));
  EXPECT_NE(
      document.find(R"(<EXEC count="1" cpu="0.02" elapsed="0.00" disk="1" query="7" current="12")"),
      std::string::npos)
      << document;
}

}  // namespace
}  // namespace facade_test
