// The FTP session flows against proftpd: validation, start-up, and the statement document of
// what the session traced after it.
#include <string>

#include "facade_fixture.h"
#include "parser/trace_parser.h"

namespace facade_test {
namespace {

constexpr const char* kSessionTrace = "4242_orcl.trc";
constexpr const char* kSessionXml = "4242_orcl.xml";

// lookup/ of the server's tree holds 4711_ora.trc, 4711 bytes long.
TEST_F(FtpFlowsTest, ValidationUsesItsOwnSettingsAndKeepsTheStoredOnes) {
  const std::string user = Servers().User();
  const std::string password = Servers().Password();
  EXPECT_EQ(service_.FtpValidation(Host().c_str(), user.c_str(), "wrong", "/lookup", "4711", &msg_),
            1);
  EXPECT_EQ(msg_, kLogonFailed);
  EXPECT_EQ(service_.Transport(), facade::kNoTransport);

  ASSERT_EQ(service_.FtpValidation(Host().c_str(), user.c_str(), password.c_str(), "/lookup",
                                   "4711", &msg_),
            0)
      << msg_;
  EXPECT_EQ(service_.Transport(), facade::kFtp);
  EXPECT_EQ(service_.TraceFileName(), "4711_ora.trc");
  EXPECT_EQ(service_.StartOffset(), 4711u);
  EXPECT_EQ(service_.FtpInfo().GetUdump(), Udump());
  WriteWholeFile(Served() / kTrace, "x\n");
  EXPECT_EQ(service_.FtpGetTraceFile(kTrace, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / kTrace), "x\r\n");
}

TEST_F(FtpFlowsTest, StartUpStoresItsSettingsEvenWhenTheLookupFails) {
  const std::string user = Servers().User();
  const std::string password = Servers().Password();
  EXPECT_EQ(service_.ZantivFtpTrcStartUp(Host().c_str(), user.c_str(), password.c_str(), "/lookup",
                                         "99", &out_, &msg_),
            1);
  EXPECT_EQ(msg_, "FTP failed to get trace file for the session!");
  EXPECT_EQ(out_, "");
  EXPECT_EQ(service_.FtpInfo().GetUdump(), "/lookup");
  EXPECT_EQ(service_.Transport(), facade::kNoTransport);

  WriteWholeFile(Served() / kSessionTrace, Fixture(kTrace));
  ASSERT_EQ(service_.ZantivFtpTrcStartUp(Host().c_str(), user.c_str(), password.c_str(),
                                         Udump().c_str(), "4242", &out_, &msg_),
            0)
      << msg_;
  EXPECT_EQ(out_, kSessionXml);
  EXPECT_EQ(service_.FtpInfo().GetUdump(), Udump());
  EXPECT_EQ(service_.Transport(), facade::kFtp);
  EXPECT_EQ(service_.StartOffset(), Fixture(kTrace).size());
  EXPECT_FALSE(fs::exists(work() / kSessionTrace));  // nothing copied, nothing parsed
  EXPECT_FALSE(fs::exists(root() / kSessionXml));
}

// The statement document covers what the session wrote after the start-up, and is the one a
// parse of those lines alone gives.
TEST_F(FtpFlowsTest, StatementDocumentReadsWhatTheSessionWroteSinceTheStartUp) {
  WriteWholeFile(Served() / kSessionTrace, Fixture(kTrace));
  ASSERT_EQ(service_.ZantivFtpTrcStartUp(Host().c_str(), Servers().User().c_str(),
                                         Servers().Password().c_str(), Udump().c_str(), "4242",
                                         &out_, &msg_),
            0)
      << msg_;
  EXPECT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 1);
  EXPECT_EQ(msg_,
            "Trace parser did not find the parsed trace info! Please check if the trace file has "
            "reached max_dump_file_size.");

  AddTrace(root(), "since.trc");
  parser::CTraceParser local("update emp", "9.2.0.4.0");
  local.SetOutputDirectory(work().string());
  local.Parse("since.trc", 0);
  local.CreateSortedXML(kSessionTrace);
  const std::string expected = ReadWholeFile(root() / kSessionXml);
  fs::remove(root() / kSessionXml);

  AppendFile(Served() / kSessionTrace, Fixture(kTrace));
  ASSERT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(root() / kSessionXml), expected);
  EXPECT_NE(expected.find("<EXEC count=\"1\" cpu=\"0.02\""), std::string::npos);  // the update
}

}  // namespace
}  // namespace facade_test
