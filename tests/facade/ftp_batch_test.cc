// The FTP batch parse against proftpd: "MORE" until the stream is read, the session it holds
// between calls, and how a failure, the file-share batch or the object's end drop it.
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class FtpBatchTest : public FtpFlowsTest {
 protected:
  // The fixture trace 500 times over (about 1 MB): a stream dropped after its first portion
  // is still being sent.
  void ServeLongTrace() const {
    std::string text;
    for (int i = 0; i < 500; ++i) text += Fixture(kTrace);
    WriteWholeFile(Served() / kTrace, text);
  }
  std::string Batch(const char* name = kTrace) {
    service_.FtpParseFileEx(name, 1, 0, &out_, &msg_);
    return msg_;
  }
};

// While the batch holds the thread's FTP session, other FTP calls cannot start their own.
TEST_F(FtpBatchTest, AnswersMoreUntilTheStreamIsRead) {
  WriteWholeFile(Served() / kTrace, Fixture(kTrace));
  for (const char* portion : {"select ename", "update emp"}) {
    EXPECT_EQ(Batch(), "MORE");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(Portion(), portion);
    EXPECT_TRUE(service_.HasFtpStream());
    EXPECT_EQ(service_.FtpGetTraceFile(kTrace, &msg_), 1);
    EXPECT_EQ(msg_, "FTP failed to initialize!");
  }
  EXPECT_EQ(Batch(), "OK");
  EXPECT_EQ(Portion(), "commit");
  EXPECT_FALSE(service_.HasFtpStream());
  EXPECT_EQ(service_.BatchParser(), nullptr);
  EXPECT_TRUE(FtpIsFree());
}

TEST_F(FtpBatchTest, FailureDropsTheBatchAndTheNextCallStartsAfresh) {
  WriteWholeFile(Served() / kTrace, Fixture(kTrace));
  EXPECT_EQ(Batch("gone.trc"), "FTP failed to open data stream connection!");
  EXPECT_EQ(service_.BatchParser(), nullptr);
  EXPECT_FALSE(service_.HasFtpStream());
  EXPECT_TRUE(FtpIsFree());

  ASSERT_EQ(Batch(), "MORE");
  fs::remove(work() / kXml);
  fs::create_directory(work() / kXml);  // the next portion's document cannot be written
  EXPECT_EQ(Batch(), "Trace parser failed to create output XML file!");
  EXPECT_EQ(service_.BatchParser(), nullptr);
  EXPECT_FALSE(service_.HasFtpStream());
  EXPECT_TRUE(FtpIsFree());
  fs::remove(work() / kXml);
  EXPECT_EQ(Batch(), "MORE");
  EXPECT_EQ(Portion(), "select ename");
}

// Each transport's batch drops the other's and starts from the beginning of its own file; the
// FTP stream dropped half-way leaves no session behind.
TEST_F(FtpBatchTest, ShareAndFtpBatchesDropEachOther) {
  ServeLongTrace();
  AddTrace(udump());
  ASSERT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
  EXPECT_EQ(Batch(), "MORE");
  EXPECT_EQ(Portion(), "select ename");
  EXPECT_FALSE(service_.HasShareStream());

  ASSERT_EQ(service_.NfsParseFileEx(kTrace, 1, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(msg_, "MORE");
  EXPECT_EQ(Portion(), "select ename");
  EXPECT_FALSE(service_.HasFtpStream());
  EXPECT_TRUE(service_.HasShareStream());
  EXPECT_TRUE(FtpIsFree());
}

TEST_F(FtpBatchTest, ObjectEndedHalfWayReleasesItsSession) {
  ServeLongTrace();
  {
    facade::CPelicor abandoned;
    ASSERT_EQ(Connect(abandoned), 0);
    ASSERT_EQ(abandoned.SetWorkingDir(work().c_str(), &msg_), 0);
    ASSERT_EQ(abandoned.FtpParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
    ASSERT_EQ(msg_, "MORE");
    EXPECT_FALSE(FtpIsFree());
  }
  EXPECT_TRUE(FtpIsFree());
}

}  // namespace
}  // namespace facade_test
