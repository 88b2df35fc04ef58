// The SFTP methods of the service object against the test sshd (fixture sftp_server): the
// host's usual flow (the trace file of a server process, its copy, then what the session wrote
// after the lookup, parsed as it streams in) and the failures a host meets.
#include <string>

#include "../transport/sftp_test_server.h"
#include "facade_fixture.h"

namespace facade_test {
namespace {

using pelicor_test::SftpServer;

class SftpFlowsTest : public FacadeTest {
 protected:
  void SetUp() override {
    PELICOR_REQUIRE_SFTP_SERVER();
    const SftpServer& server = *SftpServer::Get();
    served_ = server.Served("facade-" + root().filename().string());
    fs::create_directory(served_);
    AddTrace(served_);
    WriteWholeFile(root() / "known_hosts",
                   SftpServer::KnownHostsLine(server.Port(), server.HostKey()));
    ASSERT_EQ(Connect(server.Key("id_client"), root() / "known_hosts"), 0) << msg_;
  }
  ~SftpFlowsTest() override {
    std::error_code ignored;
    if (!served_.empty()) fs::remove_all(served_, ignored);
  }

  int Connect(const std::string& identity, const fs::path& known_hosts) {
    const SftpServer& server = *SftpServer::Get();
    const std::string host = "127.0.0.1:" + std::to_string(server.Port());
    return service_.SftpSetConnectInfo(host.c_str(), server.User().c_str(), nullptr,
                                       served_.string().c_str(), identity.c_str(),
                                       known_hosts.string().c_str(), 0, &msg_);
  }

  fs::path served_;
};

TEST_F(SftpFlowsTest, FindsCopiesAndParsesWhatTheSessionWroteAfterTheLookup) {
  ASSERT_EQ(service_.SftpGetTraceFilePID("4242", 1, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(out_, kTrace);
  EXPECT_EQ(ReadWholeFile(work() / kTrace), Fixture(kTrace));
  EXPECT_EQ(service_.StartOffset(), Fixture(kTrace).size());

  // The session runs its statements again; the parse reads only that, from the server.
  AppendFile(served_ / kTrace, Fixture(kTrace));
  ASSERT_EQ(service_.SftpParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(out_, kXml);
  const std::string streamed = ReadWholeFile(work() / kXml);
  EXPECT_EQ(Portion(), "select ename+update emp+commit");
  // The same as the local parse of the same file from the same offset.
  fs::copy_file(served_ / kTrace, root() / kTrace);
  ASSERT_EQ(service_.ParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / kXml), streamed);

  ASSERT_EQ(service_.SftpGetTraceFileList(0, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / "SftpTraceFileList.txt"), std::string(kTrace) + "\n");
}

TEST_F(SftpFlowsTest, FailuresEndInTheirMessage) {
  EXPECT_EQ(service_.SftpParseFile("../orcl_ora_4242.trc", 0, 0, 2, &out_, &msg_), 1);
  EXPECT_EQ(msg_,
            "SFTP refused the file name ../orcl_ora_4242.trc: a file name must not hold a path.");
  EXPECT_EQ(service_.SftpGetTraceFilePID("77", 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "SFTP did not find a trace file for the session!");
  EXPECT_EQ(out_, "");

  ASSERT_EQ(Connect(SftpServer::Get()->Key("id_client"), root() / "no_known_hosts"), 0);
  EXPECT_EQ(service_.SftpParseFile(kTrace, 0, 0, 0, &out_, &msg_), 1);
  EXPECT_NE(msg_.find("is not known in " + (root() / "no_known_hosts").string()), std::string::npos)
      << msg_;
  EXPECT_FALSE(fs::exists(work() / kXml));
}

}  // namespace
}  // namespace facade_test
