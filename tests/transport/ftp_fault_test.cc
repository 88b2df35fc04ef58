// The FTP client against the scripted fault server (scripts/ftp/fault_server.py): replies a
// real server rarely sends, and the exact commands the client sends meanwhile.
#include <functional>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "../support/platform.h"
#include "ftp_test_servers.h"
#include "transport/ftp/ftp_client.h"

namespace transport {
namespace {

using pelicor_test::FtpServers;
using pelicor_test::ReadWholeFile;
using pelicor_test::ScratchDir;

// The fault server's files: any name holds these 10000 bytes.
std::string FaultFile(const std::string& name) {
  std::string bytes(10000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<char>((i * 7 + name.size()) % 251);
  }
  return bytes;
}

class FtpFaultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    PELICOR_REQUIRE_FTP_SERVERS();
    ASSERT_EQ(FtpInit(), 0);
    FtpSetSynchronousMode();
    FtpSetDefaultTimeOut(1);
  }
  void TearDown() override { FtpRelease(); }

  static int Login(const std::string& scenario) {
    return FtpLogin(FtpServers::Get()->Address(scenario).c_str(), "scott", "tiger");
  }

  ScratchDir dir_;
};

struct FaultCase {
  const char* scenario;
  bool passive;
  std::function<int(const ScratchDir&)> run;  // the result of the last call
  int result;
  const char* transcript;
};

TEST_F(FtpFaultTest, ResultsAndCommandTranscripts) {
  const auto recv = [](const ScratchDir& dir) {
    return FtpRecvFile("x.bin", dir.File("x.bin").c_str(), 'I', false);
  };
  const FaultCase cases[] = {
      {"greeting_421", true, [](const ScratchDir&) { return 0; }, 1008, ""},
      {"silent", true, [](const ScratchDir&) { return 0; }, 2002, ""},
      {"long_line", true, [](const ScratchDir&) { return 0; }, 3001, ""},
      {"nul_bytes", true, [](const ScratchDir&) { return FtpNOOP(); }, 0,
       "USER scott\nPASS tiger\nNOOP\n"},
      {"mid_421", true, [](const ScratchDir&) { return FtpCWD("udump"); }, 3001,
       "USER scott\nPASS tiger\nCWD udump\n"},
      {"mid_421", true,
       [](const ScratchDir&) {
         FtpCWD("udump");
         return FtpNOOP();
       },
       2002, "USER scott\nPASS tiger\nCWD udump\n"},
      {"pasv_no_parenthesis", true, recv, 3001, "USER scott\nPASS tiger\nTYPE I\nPASV\n"},
      {"pasv_few_commas", true, recv, 3001, "USER scott\nPASS tiger\nTYPE I\nPASV\n"},
      {"normal", true,
       [](const ScratchDir& dir) {
         const int result = FtpRecvFileToHandle(
             "data.bin", os::CreateFileForWrite(dir.File("data.bin")), 'I', false, 100);
         return result != 0 ? result : FtpQuit();
       },
       0, "USER scott\nPASS tiger\nTYPE I\nPASV\nREST 100\nRETR data.bin\nQUIT\n"},
  };
  for (const FaultCase& c : cases) {
    SCOPED_TRACE(c.scenario);
    FtpSetPassiveMode(c.passive);
    const int login = Login(c.scenario);
    const int result = login != 0 ? login : c.run(dir_);
    EXPECT_EQ(result, c.result) << FtpErrorString(result) << "; last reply: " << FtpLastReply();
    FtpCloseConnection();
    EXPECT_EQ(FtpServers::Get()->Transcript(c.scenario), c.transcript);
  }
  EXPECT_EQ(ReadWholeFile(dir_.File("data.bin")), FaultFile("data.bin").substr(100));
}

// The server resets the data connection after 8192 of 100000 bytes and answers 426.
TEST_F(FtpFaultTest, ResetDataConnectionFailsTheTransferAndAborts) {
  PELICOR_SKIP_UNDER_WINE(pelicor_test::kWineLosesResets);
  FtpSetPassiveMode(true);
  ASSERT_EQ(Login("data_drop"), 0);
  const int result = FtpRecvFile("x.bin", dir_.File("x.bin").c_str(), 'I', false);
  EXPECT_EQ(result, 2006) << FtpErrorString(result) << "; last reply: " << FtpLastReply();
  FtpCloseConnection();
  EXPECT_EQ(FtpServers::Get()->Transcript("data_drop"),
            "USER scott\nPASS tiger\nTYPE I\nPASV\nRETR x.bin\nABOR\n");
}

TEST_F(FtpFaultTest, ContinuationLinesWithoutCodeBelongToTheReply) {
  ASSERT_EQ(Login("continuation_without_code"), 0);
  std::string directory;
  EXPECT_EQ(FtpPWD(&directory), 0);
  EXPECT_EQ(directory, "/udump");
  EXPECT_EQ(FtpLastReply(), "257-\"/udump\" is the current directory\n and more\n257 End");
  EXPECT_EQ(FtpNOOP(), 0);
}

TEST_F(FtpFaultTest, ActiveModeAnnouncesTheControlConnectionsAddress) {
  FtpSetPassiveMode(false);
  ASSERT_EQ(Login("normal_active"), 0);
  ASSERT_EQ(FtpOpenDataConnection("trace.trc", kFtpActionRetrieve, 'A', 0), 0);
  EXPECT_EQ(FtpBytesToBeTransferred(), 10000u);
  std::string streamed;
  char block[4096];
  for (int length = sizeof block; FtpRecvThroughDataConnection(block, &length) == 0;
       length = sizeof block) {
    streamed.append(block, static_cast<std::size_t>(length));
  }
  EXPECT_EQ(FtpCloseDataConnection(), 0);
  EXPECT_EQ(streamed, FaultFile("trace.trc"));
  EXPECT_EQ(FtpQuit(), 0);
  EXPECT_TRUE(std::regex_match(
      FtpServers::Get()->Transcript("normal_active"),
      std::regex("USER scott\nPASS tiger\nPORT 127,0,0,1,[0-9]+,[0-9]+\nRETR trace.trc\nQUIT\n")));
}

}  // namespace
}  // namespace transport
