// The batch parses: "MORE" until the trace is read, each call writing only its own portion,
// and what a failure leaves behind for the next call.
#include <string>
#include <vector>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class BatchParseTest : public FacadeTest {
 protected:
  // A directory where the portion's document should go makes CreateXML fail after parsing.
  void BlockOutput() const { fs::create_directory(work() / kXml); }
  void UnblockOutput() const { fs::remove(work() / kXml); }
};

// The select closes when its cursor is reused; the other two when the trace ends, one a call.
TEST_F(BatchParseTest, ParseFileExAnswersMoreUntilTheTraceIsRead) {
  AddTrace(root());
  for (const char* portion : {"select ename", "update emp"}) {
    EXPECT_EQ(service_.ParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
    EXPECT_EQ(msg_, "MORE");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(Portion(), portion);
    EXPECT_NE(service_.BatchParser(), nullptr);
  }
  EXPECT_EQ(service_.ParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(Portion(), "commit");
  EXPECT_EQ(service_.BatchParser(), nullptr);
}

// Only the low byte of flag counts: 0x101 skips waits, 0x100 does not.
TEST_F(BatchParseTest, FlagLowByteSelectsWhatIsSkipped) {
  AddTrace(root());
  ASSERT_EQ(service_.ParseFileEx(kTrace, 1, 0x100, &out_, &msg_), 0);
  EXPECT_NE(ReadWholeFile(work() / kXml).find("<WAIT>"), std::string::npos);
  facade::CPelicor other;
  ASSERT_EQ(other.SetWorkingDir(work().c_str(), &msg_), 0);
  ASSERT_EQ(other.ParseFileEx(kTrace, 1, 0x101, &out_, &msg_), 0);
  EXPECT_EQ(Portion(), "select ename");
  EXPECT_EQ(ReadWholeFile(work() / kXml).find("<WAIT>"), std::string::npos);
}

TEST_F(BatchParseTest, ParseFileExKeepsItsParserAfterAFailure) {
  AddTrace(root());
  BlockOutput();
  EXPECT_EQ(service_.ParseFileEx(kTrace, 1, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace parser failed to create output XML file!");
  const parser::CTraceParser* kept = service_.BatchParser();
  ASSERT_NE(kept, nullptr);
  UnblockOutput();
  EXPECT_EQ(service_.ParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "MORE");
  EXPECT_EQ(service_.BatchParser(), kept);
  EXPECT_EQ(Portion(), "select ename");  // the portion that could not be written
}

TEST_F(BatchParseTest, NfsParseFileExReadsTheShareInBatches) {
  AddTrace(udump());
  EXPECT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "MORE");
  EXPECT_TRUE(service_.HasShareStream());
  EXPECT_EQ(Portion(), "select ename");
  EXPECT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "MORE");
  EXPECT_EQ(Portion(), "update emp");
  EXPECT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(Portion(), "commit");
  EXPECT_FALSE(service_.HasShareStream());
  EXPECT_EQ(service_.BatchParser(), nullptr);
}

TEST_F(BatchParseTest, NfsParseFileExStartsAfreshAfterAFailure) {
  AddTrace(udump());
  BlockOutput();
  EXPECT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace parser failed to create output XML file!");
  EXPECT_EQ(service_.BatchParser(), nullptr);
  EXPECT_FALSE(service_.HasShareStream());
  UnblockOutput();
  EXPECT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "MORE");
  EXPECT_EQ(Portion(), "select ename");
}

// An FTP batch does not continue the share's: it drops it before it starts its own.
TEST_F(BatchParseTest, FtpParseFileExDropsARunningShareParse) {
  AddTrace(udump());
  ASSERT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(service_.FtpParseFileEx(kTrace, 1, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "hostname/username/password/udump, one of them is empty!");
  EXPECT_EQ(out_, kXml);
  EXPECT_EQ(service_.BatchParser(), nullptr);
  EXPECT_FALSE(service_.HasShareStream());
  EXPECT_FALSE(service_.HasFtpStream());
}

// ParseFileEx goes on with whatever batch is running, the share's included.
TEST_F(BatchParseTest, ParseFileExContinuesAShareParse) {
  AddTrace(udump());
  ASSERT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(service_.ParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "MORE");
  EXPECT_EQ(Portion(), "update emp");
  EXPECT_TRUE(service_.HasShareStream());
}

}  // namespace
}  // namespace facade_test
