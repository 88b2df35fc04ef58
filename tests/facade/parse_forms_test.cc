// The three forms of each parse (a local file, the share read in place, an FTP stream): the
// documents of a whole-file parse, and the batch parse with the state it keeps between calls,
// what a failure leaves behind and how the forms meet.
#include <string>

#include "facade_fixture.h"
#include "parser/trace_parser.h"

namespace facade_test {
namespace {

using facade::CPelicor;
using WholeMethod = int (CPelicor::*)(const char*, std::uint16_t, std::uint16_t, std::uint16_t,
                                      std::string*, std::string*);
using BatchMethod = int (CPelicor::*)(const char*, std::uint16_t, std::uint16_t, std::string*,
                                      std::string*);
constexpr WholeMethod kWhole[] = {&CPelicor::ParseFile, &CPelicor::NfsParseFile,
                                  &CPelicor::FtpParseFile};
constexpr BatchMethod kBatch[] = {&CPelicor::ParseFileEx, &CPelicor::NfsParseFileEx,
                                  &CPelicor::FtpParseFileEx};

class ParseFormsTest : public FtpFlowsTest, public ::testing::WithParamInterface<Where> {
 protected:
  void SetUp() override {
    FtpFlowsTest::SetUp();
    WriteWholeFile(Dir(GetParam()) / kTrace, Fixture(kTrace));
  }
  std::string Batch(std::uint16_t flag = 0) {
    (service_.*kBatch[GetParam()])(kTrace, 1, flag, &out_, &msg_);
    return msg_;
  }
  void ExpectStreamsOf(Where held) const {
    EXPECT_EQ(service_.HasShareStream(), held == kShare);
    EXPECT_EQ(service_.HasFtpStream(), held == kFtp);
  }
};

INSTANTIATE_TEST_SUITE_P(Forms, ParseFormsTest, ::testing::Values(kLocal, kShare, kFtp));

std::string Document(const fs::path& path) {
  return fs::exists(path) ? pelicor_test::ReadTextFile(path) : "(none)";
}

// The call-by-call document goes to the working directory, the aggregated one next to the trace
// name as given (here the current directory); nothing is copied.
TEST_P(ParseFormsTest, XmlTypeChoosesTheDocuments) {
  const std::string calls = Fixture("orcl_ora_4242.calls.xml");
  const std::string aggregated = Fixture("orcl_ora_4242.aggregated.xml");
  for (std::uint16_t xml_type = 0; xml_type < 4; ++xml_type) {
    SCOPED_TRACE(xml_type);
    fs::remove(work() / kXml);
    fs::remove(root() / kXml);
    EXPECT_EQ((service_.*kWhole[GetParam()])(kTrace, 0, 0, xml_type, &out_, &msg_), 0);
    EXPECT_EQ(msg_, "OK");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(Document(work() / kXml), xml_type == 0 || xml_type == 2 ? calls : "(none)");
    EXPECT_EQ(Document(root() / kXml), xml_type == 1 || xml_type == 2 ? aggregated : "(none)");
  }
  EXPECT_FALSE(fs::exists(work() / kTrace));
}

// The select closes when its cursor is reused, the other two when the trace ends, one a call.
// Only the low byte of flag counts: 0x101 skips waits, 0x100 does not. While an FTP batch holds
// the thread's FTP session, no other FTP call can open one.
TEST_P(ParseFormsTest, BatchAnswersMoreUntilTheTraceIsRead) {
  const std::uint16_t flag = GetParam() == kShare ? 0x101 : 0x100;
  for (const char* portion : {"select ename", "update emp"}) {
    EXPECT_EQ(Batch(flag), "MORE");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(Portion(), portion);
    EXPECT_EQ(ReadWholeFile(work() / kXml).find("<WAIT>") == std::string::npos, flag == 0x101);
    EXPECT_NE(service_.BatchParser(), nullptr);
    ExpectStreamsOf(GetParam());
    EXPECT_EQ(FtpIsFree(), GetParam() != kFtp);
  }
  EXPECT_EQ(Batch(flag), "OK");
  EXPECT_EQ(Portion(), "commit");
  EXPECT_EQ(service_.BatchParser(), nullptr);
  ExpectStreamsOf(kLocal);
  EXPECT_TRUE(FtpIsFree());
}

// ParseFileEx keeps its parser after a failure and goes on with it, writing the unwritten portion
// with the next one; the share and FTP forms drop parser and transport, and start afresh.
TEST_P(ParseFormsTest, BatchFailureRules) {
  ASSERT_EQ(Batch(), "MORE");
  const parser::CTraceParser* parser = service_.BatchParser();
  fs::remove(work() / kXml);
  fs::create_directory(work() / kXml);  // the next portion's document cannot be written
  EXPECT_EQ(Batch(), "Trace parser failed to create output XML file!");
  EXPECT_EQ(service_.BatchParser(), GetParam() == kLocal ? parser : nullptr);
  ExpectStreamsOf(kLocal);
  EXPECT_TRUE(FtpIsFree());
  fs::remove(work() / kXml);
  const std::string answer = Batch();
  const std::string next = answer + " " + Portion();
  EXPECT_EQ(next, GetParam() == kLocal ? "OK update emp+commit" : "MORE select ename");
}

// ParseFileEx goes on with the share's batch; each transport's batch drops the other's and
// starts at the beginning of its own file. The FTP stream dropped half-way (the trace 500 times
// over, about 1 MB, is still being sent) leaves no session behind.
TEST_F(FtpFlowsTest, BatchFormsMeet) {
  std::string text;
  for (int i = 0; i < 500; ++i) text += Fixture(kTrace);
  WriteWholeFile(Served() / kTrace, text);
  AddTrace(udump());
  const auto batch = [&](BatchMethod method) {
    (service_.*method)(kTrace, 1, 0, &out_, &msg_);
    return msg_ + " " + Portion();
  };
  EXPECT_EQ(batch(&CPelicor::NfsParseFileEx), "MORE select ename");
  EXPECT_EQ(batch(&CPelicor::ParseFileEx), "MORE update emp");
  EXPECT_TRUE(service_.HasShareStream());
  EXPECT_EQ(batch(&CPelicor::FtpParseFileEx), "MORE select ename");
  EXPECT_FALSE(service_.HasShareStream());
  EXPECT_EQ(batch(&CPelicor::NfsParseFileEx), "MORE select ename");
  EXPECT_FALSE(service_.HasFtpStream());
  EXPECT_TRUE(FtpIsFree());

  {
    CPelicor abandoned;
    ASSERT_EQ(Connect(abandoned), 0);
    ASSERT_EQ(abandoned.SetWorkingDir(work().string().c_str(), &msg_), 0);
    ASSERT_EQ(abandoned.FtpParseFileEx(kTrace, 1, 0, &out_, &msg_), 0);
    ASSERT_EQ(msg_, "MORE");
    EXPECT_FALSE(FtpIsFree());
  }
  EXPECT_TRUE(FtpIsFree());  // the object's end released its session
}

}  // namespace
}  // namespace facade_test
