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
// its FTP session, other FTP calls of the object still work.
TEST_P(ParseFormsTest, BatchAnswersMoreUntilTheTraceIsRead) {
  const std::uint16_t flag = GetParam() == kShare ? 0x101 : 0x100;
  for (const char* portion : {"select ename", "update emp"}) {
    EXPECT_EQ(Batch(flag), "MORE");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(Portion(), portion);
    EXPECT_EQ(ReadWholeFile(work() / kXml).find("<WAIT>") == std::string::npos, flag == 0x101);
    EXPECT_NE(service_.BatchParser(), nullptr);
    ExpectStreamsOf(GetParam());
    EXPECT_TRUE(FtpIsFree());
  }
  EXPECT_EQ(Batch(flag), "OK");
  EXPECT_EQ(Portion(), "commit");
  EXPECT_EQ(service_.BatchParser(), nullptr);
  ExpectStreamsOf(kLocal);
  EXPECT_TRUE(FtpIsFree());
}

// Count 0 sets no limit: one call reads the whole trace, writes every statement and is done,
// whatever the flag asks to leave out.
TEST_P(ParseFormsTest, BatchWithoutLimitEndsInOneCall) {
  for (const int flag : {0, 1}) {
    SCOPED_TRACE(flag);
    EXPECT_EQ(
        (service_.*kBatch[GetParam()])(kTrace, 0, static_cast<std::uint16_t>(flag), &out_, &msg_),
        0);
    EXPECT_EQ(msg_, "OK");
    EXPECT_EQ(Portion(), "select ename+update emp+commit");
    EXPECT_EQ(service_.BatchParser(), nullptr);
    ExpectStreamsOf(kLocal);
  }
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

// The statement "select 1 from dual" of the aggregated document, its one EXEC row (count and
// seconds) repeated in TOTAL.
std::string AggregatedStatement(int count, const std::string& seconds) {
  const std::string figures = "count=\"" + std::to_string(count) + "\" cpu=\"" + seconds +
                              "\" elapsed=\"" + seconds +
                              "\" disk=\"0\" query=\"0\" current=\"0\" rows=\"0\">";
  const std::string none =
      "count=\"0\" cpu=\"0.00\" elapsed=\"0.00\" disk=\"0\" query=\"0\" current=\"0\" "
      "rows=\"0\">";
  return "<STATEMENT>\n<SQL><![CDATA[select 1 from dual\n]]></SQL>\n<PARSE " + none +
         "</PARSE>\n<EXEC " + figures + "</EXEC>\n<FETCH " + none + "</FETCH>\n<TOTAL " + figures +
         "</TOTAL>\n<MISSES miss=\"0\"></MISSES>\n<OPTIMIZER goal=\"CHOOSE\">" +
         "</OPTIMIZER>\n</STATEMENT>\n";
}

// What a session adds to its trace: `times` runs of one statement under cursor 1, each of
// 2.5 s on a microsecond clock.
std::string SessionRuns(int times) {
  std::string text;
  for (int n = 0; n < times; ++n) {
    const std::string tim = std::to_string(1083929217641977 + n * 1000000);
    text +=
        "=====================\nPARSING IN CURSOR #1 len=18 dep=0 uid=5 oct=3 lid=5 tim=" + tim +
        " hv=1 ad='6b'\nselect 1 from dual\nEND OF STMT\n" +
        "EXEC #1:c=2500000,e=2500000,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=" + tim + "\n";
  }
  return text;
}

constexpr const char* k9iHead =
    "/u01/app/oracle/admin/orcl/udump/4242_sess.trc\n"
    "Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\nOracle process number: 12\n";

class AfterLookupTest : public ParseFormsTest {
 protected:
  // The host's flow: a trace holding only `head` is looked up for process 4242 (the share's
  // lookup for the local and share forms, FTP's for FTP), which sets the start offset behind
  // it; the session then writes `tail`, and the whole-file parse of the form writes the
  // aggregated document.
  std::string AggregateAfterLookup(const std::string& head, const std::string& tail,
                                   std::uint16_t isAggregated) {
    const char* name = "4242_sess.trc";
    fs::remove(udump() / kTrace);  // the only trace of process 4242 on the share
    WriteWholeFile(Dir(GetParam()) / name, head);
    WriteWholeFile(udump() / name, head);
    const auto lookup =
        GetParam() == kFtp ? &CPelicor::FtpGetTraceFilePID : &CPelicor::NfsGetTraceFilePID;
    EXPECT_EQ((service_.*lookup)("4242", 0, &out_, &msg_), 0) << msg_;
    EXPECT_EQ(service_.StartOffset(), head.size());
    AppendFile(Dir(GetParam()) / name, tail);
    fs::remove(root() / "4242_sess.xml");
    EXPECT_EQ((service_.*kWhole[GetParam()])(name, 0, isAggregated, 1, &out_, &msg_), 0) << msg_;
    return Document(root() / "4242_sess.xml");
  }
};

INSTANTIATE_TEST_SUITE_P(Forms, AfterLookupTest, ::testing::Values(kLocal, kShare, kFtp));

// The banner stands before the start offset and still sets the clock; without one, the 16-digit
// tim values of the new lines tell a microsecond clock.
TEST_P(AfterLookupTest, BannerBeforeTheStartOffsetSetsTheClock) {
  const struct {
    std::string head;
    std::string seconds;
  } cases[] = {
      {k9iHead, "2.50"},
      {"Oracle8i Enterprise Edition Release 8.1.7.4.0 - Production\n", "25000.00"},
      {"Unix process pid: 4242, image: oracle@dbhost01 (TNS V1-V3)\n", "2.50"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.head);
    EXPECT_EQ(AggregateAfterLookup(test.head, SessionRuns(1), 1),
              "<STATEMENTS>\n" + AggregatedStatement(1, test.seconds) + "</STATEMENTS>\n");
  }
}

// isAggregated is TKPROF's aggregate=yes: the same SQL text under a reused cursor is one
// statement.
TEST_P(AfterLookupTest, AggregatedFlagMergesIdenticalSql) {
  const std::string apart = AggregatedStatement(1, "2.50");
  const struct {
    std::uint16_t isAggregated;
    std::string statements;
  } cases[] = {
      {0, apart + apart},
      {1, AggregatedStatement(2, "5.00")},
      {2, AggregatedStatement(2, "5.00")},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.isAggregated);
    EXPECT_EQ(AggregateAfterLookup(k9iHead, SessionRuns(2), test.isAggregated),
              "<STATEMENTS>\n" + test.statements + "</STATEMENTS>\n");
  }
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
    EXPECT_TRUE(FtpIsFree());
  }
  EXPECT_TRUE(FtpIsFree());
}

}  // namespace
}  // namespace facade_test
