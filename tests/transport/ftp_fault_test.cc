// The FTP client against the scripted fault server (scripts/ftp/fault_server.py): replies a
// real server rarely sends, and the exact commands the client sends meanwhile.
#include <chrono>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../support/platform.h"
#include "ftp_test_servers.h"
#include "loopback.h"
#include "transport/ftp/ftp_client.h"
#include "transport/tcp/tcp.h"

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
  const char* transcript;  // a regular expression for the commands the server received
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
      // The fault server knows no EPSV: the client asks PASV next.
      {"pasv_no_parenthesis", true, recv, 3001, "USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\n"},
      {"pasv_few_commas", true, recv, 3001, "USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\n"},
      {"pasv_blanks", true, recv, 0, "USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\nRETR x\\.bin\n"},
      {"normal", true,
       [](const ScratchDir& dir) {
         const int result = FtpRecvFileToHandle(
             "data.bin", os::CreateFileForWrite(dir.File("data.bin")), 'I', false, 100);
         return result != 0 ? result : FtpQuit();
       },
       0, "USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\nREST 100\nRETR data\\.bin\nQUIT\n"},
      // The stranger's connection from 127.0.0.2 is refused; the server's own carries the file.
      {"stranger", false, recv, 0,
       "USER scott\nPASS tiger\nTYPE I\nPORT 127,0,0,1,[0-9]+,[0-9]+\nRETR x\\.bin\n"},
      {"normal", true,
       [](const ScratchDir&) {
         std::uint64_t size = 0;
         return FtpSize("x.bin", &size);
       },
       3003, "USER scott\nPASS tiger\nTYPE I\nSIZE x\\.bin\n"},
  };
  for (const FaultCase& c : cases) {
    SCOPED_TRACE(c.scenario);
    FtpSetPassiveMode(c.passive);
    const int login = Login(c.scenario);
    const int result = login != 0 ? login : c.run(dir_);
    EXPECT_EQ(result, c.result) << FtpErrorString(result) << "; last reply: " << FtpLastReply();
    FtpCloseConnection();
    const std::string transcript = FtpServers::Get()->Transcript(c.scenario);
    EXPECT_TRUE(std::regex_match(transcript, std::regex(c.transcript))) << transcript;
  }
  EXPECT_EQ(ReadWholeFile(dir_.File("data.bin")), FaultFile("data.bin").substr(100));
  EXPECT_EQ(ReadWholeFile(dir_.File("x.bin")), FaultFile("x.bin"));
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A reply that never ends (one byte now and then, endless bytes without a line end, endless
// "220-" lines) or a data connection that stalls: with a time-out of 1 s the call gives up
// within about that second, with the no-answer result for a reply and 2006 for the data.
TEST_F(FtpFaultTest, EndlessRepliesAndStallsEndWithinTheTimeOut) {
  const struct {
    const char* scenario;
    int result;
  } cases[] = {
      {"dribble", 2002}, {"endless_line", 2002}, {"endless_lines", 2002}, {"data_stall", 2006}};
  FtpSetPassiveMode(true);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.scenario);
    const auto start = std::chrono::steady_clock::now();
    int result = Login(c.scenario);
    if (result == 0) result = FtpRecvFile("x.bin", dir_.File("x.bin").c_str(), 'I', false);
    EXPECT_EQ(result, c.result) << FtpErrorString(result);
    EXPECT_LT(SecondsSince(start), 2.5);
    FtpCloseConnection();
  }
}

// A port whose backlog is full drops our SYN: the log-on fails with 2007 within the time-out.
TEST_F(FtpFaultTest, ConnectToAPortThatNeverAnswersTimesOut) {
  Socket listener = kNoSocket;
  std::uint16_t port = 0;
  ASSERT_EQ(TcpGetListenSocket(&listener, nullptr, &port, 0, "127.0.0.1"), 1);
  std::vector<Socket> fillers;
  for (int i = 0; i < 2; ++i) {
    Socket filler = kNoSocket;
    std::uint16_t filler_port = port;
    if (TcpConnect(&filler, "127.0.0.1", nullptr, &filler_port, Deadline::After(1)) == 1) {
      fillers.push_back(filler);
    }
  }
  const auto start = std::chrono::steady_clock::now();
  const std::string host = "127.0.0.1:" + std::to_string(port);
  EXPECT_EQ(FtpLogin(host.c_str(), "scott", "tiger"), 2007);
  EXPECT_GT(SecondsSince(start), 0.9);
  EXPECT_LT(SecondsSince(start), 2.5);
  for (Socket& filler : fillers) TcpClose(&filler);
  TcpClose(&listener);
}

// [::ffff:127.0.0.1] reaches the IPv4 server through an IPv6 socket: PASV and PORT cannot
// name an IPv6 address, so the data connection is made with EPSV or EPRT.
TEST_F(FtpFaultTest, Ipv6ControlConnectionSpeaksEpsvAndEprt) {
  const std::string host =
      "[::ffff:127.0.0.1]:" + FtpServers::Get()->Address("extended").substr(10);
  for (const bool passive : {true, false}) {
    SCOPED_TRACE(passive);
    FtpSetPassiveMode(passive);
    ASSERT_EQ(FtpLogin(host.c_str(), "scott", "tiger"), 0);
    ASSERT_EQ(FtpRecvFile("x.bin", dir_.File("x.bin").c_str(), 'I', false), 0) << FtpLastReply();
    EXPECT_EQ(ReadWholeFile(dir_.File("x.bin")), FaultFile("x.bin"));
    FtpCloseConnection();
    const std::string transcript = FtpServers::Get()->Transcript("extended");
    EXPECT_TRUE(std::regex_match(
        transcript, std::regex(passive ? "USER scott\nPASS tiger\nTYPE I\nEPSV\nRETR x\\.bin\n"
                                       : "USER scott\nPASS tiger\nTYPE I\n"
                                         "EPRT \\|2\\|::ffff:127\\.0\\.0\\.1\\|[0-9]+\\|\n"
                                         "RETR x\\.bin\n")))
        << transcript;
  }
}

// Passive first: a server that refuses EPSV and PASV gets PORT, as the transports ask.
TEST_F(FtpFaultTest, PassiveThenActiveFallsBackToPort) {
  FtpSetDataMode(FtpDataMode::kPassiveThenActive);
  ASSERT_EQ(Login("pasv_refused"), 0);
  ASSERT_EQ(FtpRecvFile("x.bin", dir_.File("x.bin").c_str(), 'I', false), 0);
  EXPECT_EQ(ReadWholeFile(dir_.File("x.bin")), FaultFile("x.bin"));
  FtpCloseConnection();
  const std::string transcript = FtpServers::Get()->Transcript("pasv_refused");
  EXPECT_TRUE(
      std::regex_match(transcript, std::regex("USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\n"
                                              "PORT 127,0,0,1,[0-9]+,[0-9]+\nRETR x\\.bin\n")))
      << transcript;
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
            "USER scott\nPASS tiger\nTYPE I\nEPSV\nPASV\nRETR x.bin\nABOR\n");
}

// The greeting holds "2024 maintenance window" and "220-2": only "220 Ready" ends it, so the
// replies that follow stay with their commands.
TEST_F(FtpFaultTest, ContinuationLinesWithoutCodeBelongToTheReply) {
  ASSERT_EQ(Login("continuation_without_code"), 0) << FtpLastReply();
  std::string directory;
  EXPECT_EQ(FtpPWD(&directory), 0);
  EXPECT_EQ(directory, "/udump");
  EXPECT_EQ(FtpLastReply(), "257-\"/udump\" is the current directory\n and more\n257 End");
  EXPECT_EQ(FtpNOOP(), 0);
}

// Neither the verbose trace of the commands nor the hex dump of what is sent holds it.
TEST_F(FtpFaultTest, TracesNeverShowThePassword) {
  const pelicor_test::TraceCapture capture(kTraceHexDump);
  FtpSetVerboseMode(true);
  ASSERT_EQ(Login("normal"), 0);
  EXPECT_EQ(capture.text().find("tiger"), std::string::npos);
  EXPECT_NE(capture.text().find("\r\nPASS ****\r\n"), std::string::npos) << capture.text();
  EXPECT_NE(capture.text().find("> 50 41 53 53 20 2A 2A 2A - 2A 0D 0A"), std::string::npos);
}

}  // namespace
}  // namespace transport
