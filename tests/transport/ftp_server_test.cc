// The FTP client against real servers on 127.0.0.1: proftpd, pyftpdlib and vsftpd, each in
// passive and active mode, and proftpd and vsftpd again over TLS (servers that require it).
#include <cstdlib>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ftp_test_servers.h"
#include "transport/ftp/ftp_client.h"

namespace transport {
namespace {

using pelicor_test::FtpServers;
using pelicor_test::ReadWholeFile;
using pelicor_test::ScratchDir;

struct Mode {
  const char* server;
  bool passive;
  bool tls = false;
};

// So that ctest lists "proftpd passive", not the bytes of the struct.
void PrintTo(const Mode& mode, std::ostream* out) {
  *out << mode.server << (mode.passive ? " passive" : " active");
}

std::string ModeName(const ::testing::TestParamInfo<Mode>& info) {
  return std::string(info.param.server) + (info.param.passive ? "_passive" : "_active");
}

std::set<std::string> Lines(const std::string& text) {
  std::set<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.insert(line);
  }
  return lines;
}

// Logs on to the server of the parameter and changes to udump.
class FtpServerTest : public ::testing::TestWithParam<Mode> {
 protected:
  void SetUp() override {
    PELICOR_REQUIRE_FTP_SERVERS();
    servers_ = FtpServers::Get();
    if (!servers_->Has(GetParam().server)) GTEST_SKIP() << GetParam().server << " did not start";
    if (GetParam().tls && !TlsAvailable()) GTEST_SKIP() << "a build without TLS";
    ASSERT_EQ(FtpInit(), 0);
    Configure();
    ASSERT_EQ(Login(), 0) << FtpLastReply() << FtpLastTlsFailure();
    ASSERT_EQ(FtpCWD("udump"), 0);
  }
  void TearDown() override { FtpRelease(); }

  // The calling thread's session as the parameter wants it.
  void Configure() const {
    FtpSetSynchronousMode();
    FtpSetDefaultTimeOut(5);
    FtpSetPassiveMode(GetParam().passive);
    FtpSetVerboseMode(std::getenv("PELICOR_FTP_VERBOSE") != nullptr);
    if (GetParam().tls) FtpSetTls(true, TlsOptions{servers_->Certificate(), true});
  }
  // Over TLS by the name the certificate has.
  int Login() const {
    return FtpLogin(Address().c_str(), User().c_str(),
                    servers_->Password(GetParam().server).c_str());
  }
  std::string Address() const {
    return servers_->Address(GetParam().server, GetParam().tls ? "localhost" : "127.0.0.1");
  }
  std::string User() const { return servers_->User(GetParam().server); }
  std::string Served(const std::string& name) const {
    return ReadWholeFile(servers_->Served("udump/" + name));
  }
  // The server's kind, with or without TLS.
  bool Is(const char* server) const {
    const std::string name = GetParam().server;
    return name.substr(0, name.find("_tls")) == server;
  }

  const FtpServers* servers_ = nullptr;
  ScratchDir dir_;
};

// SIZE answers in binary type without a data connection; a missing file is 550.
TEST_P(FtpServerTest, NavigatesAsksSizesAndRefusesWhatIsNotThere) {
  const std::string address = Address();
  // vsftpd's account is anonymous: any password will do.
  if (!Is("vsftpd")) {
    EXPECT_EQ(FtpLogin(address.c_str(), User().c_str(), "wrong"), 1009);
  }
  EXPECT_EQ(FtpLogin(address.c_str(), User().c_str(), nullptr), 1);
  ASSERT_EQ(Login(), 0);
  ASSERT_EQ(FtpCWD("udump"), 0);
  std::string directory;
  EXPECT_EQ(FtpPWD(&directory), 0);
  EXPECT_EQ(directory, "/udump");
  std::uint64_t size = 0;
  ASSERT_EQ(FtpSize("big.bin", &size), 0) << FtpLastReply();
  EXPECT_EQ(size, 300000u);
  EXPECT_EQ(FtpSize("no-such.bin", &size), 1010);
  EXPECT_EQ(FtpCWD("no-such-dir"), 1008);
  EXPECT_EQ(FtpCDUP(), 0);
  EXPECT_EQ(FtpNOOP(), 0);
  EXPECT_EQ(FtpRecvFile("udump/no-such.trc", dir_.File("x").c_str(), 'I', false), 1010);
  EXPECT_EQ(FtpQuit(), 0);
  EXPECT_EQ(FtpNOOP(), 1003);
}

TEST_P(FtpServerTest, StreamsADataConnectionFromAnOffset) {
  for (const std::int64_t offset : {std::int64_t{0}, std::int64_t{123457}}) {
    SCOPED_TRACE(offset);
    ASSERT_EQ(FtpOpenDataConnection("big.bin", kFtpActionRetrieve, 'I', offset), 0)
        << FtpLastReply();
    // proftpd announces what is left to send, vsftpd the whole size; pyftpdlib nothing.
    const auto left = static_cast<std::uint64_t>(300000 - offset);
    EXPECT_EQ(FtpBytesToBeTransferred(), Is("proftpd") ? left : (Is("vsftpd") ? 300000u : 0u));
    std::string streamed;
    char block[1000];
    int length = sizeof block;
    int result = 0;
    while ((result = FtpRecvThroughDataConnection(block, &length)) == 0) {
      streamed.append(block, static_cast<std::size_t>(length));
      length = sizeof block;
    }
    EXPECT_EQ(result, 4);
    EXPECT_EQ(FtpCloseDataConnection(), 0);
    EXPECT_EQ(streamed, Served("big.bin").substr(static_cast<std::size_t>(offset)));
  }
  // A stream left open is finished by the next one, whose replies then stay in step.
  // (One block is read first: pyftpdlib leaves a data connection closed before it accepted
  // it without a reply.)
  ASSERT_EQ(FtpOpenDataConnection("big.bin", kFtpActionRetrieve, 'I', 0), 0);
  char block[100];
  int length = sizeof block;
  ASSERT_EQ(FtpRecvThroughDataConnection(block, &length), 0);
  ASSERT_EQ(FtpOpenDataConnection("small.txt", kFtpActionRetrieve, 'I', 0), 0);
  length = sizeof block;
  ASSERT_EQ(FtpRecvThroughDataConnection(block, &length), 0);
  EXPECT_EQ(std::string(block, static_cast<std::size_t>(length)), Served("small.txt"));
  EXPECT_EQ(FtpRecvThroughDataConnection(block, &length), 4);
  EXPECT_EQ(FtpCloseDataConnection(), 0);
  EXPECT_EQ(FtpNOOP(), 0);
}

TEST_P(FtpServerTest, ListsNamesAndDetails) {
  const std::string names = dir_.File("names.txt");
  ASSERT_EQ(FtpDir(nullptr, names.c_str(), false), 0);
  EXPECT_EQ(Lines(ReadWholeFile(names)),
            (std::set<std::string>{"big.bin", "ora_1234.trc", "ora_1234_extra.trc", "small.txt"}));

  const std::string details = dir_.File("details.txt");
  ASSERT_EQ(FtpDir(nullptr, details.c_str(), true), 0);
  EXPECT_NE(ReadWholeFile(details).find("300000"), std::string::npos);

  // proftpd and vsftpd expand patterns; pyftpdlib answers 550. No match: 450 from proftpd, an
  // empty listing from vsftpd.
  const std::string traces = dir_.File("traces.txt");
  if (Is("pyftpdlib")) {
    EXPECT_EQ(FtpDir("*.trc", traces.c_str(), false), 1010);
  } else {
    ASSERT_EQ(FtpDir("*.trc", traces.c_str(), false), 0);
    EXPECT_EQ(Lines(ReadWholeFile(traces)),
              (std::set<std::string>{"ora_1234.trc", "ora_1234_extra.trc"}));
    EXPECT_EQ(FtpDir("nomatch*", traces.c_str(), false), Is("proftpd") ? 3001 : 0);
  }
  EXPECT_EQ(FtpNOOP(), 0);
}

TEST_P(FtpServerTest, AbortStopsATransferAndKeepsTheSessionInStep) {
  int progress_reports = 0;
  const FtpNotify abort_at_first_block = [&](FtpEvent event, std::int64_t) {
    if (event == FtpEvent::kProgress && ++progress_reports == 1) FtpAbort();
  };
  EXPECT_EQ(FtpRecvFile("big.bin", dir_.File("big.bin").c_str(), 'I', true, abort_at_first_block),
            -1);
  EXPECT_EQ(progress_reports, 1);
  EXPECT_EQ(FtpNOOP(), 0);
  ASSERT_EQ(FtpRecvFile("small.txt", dir_.File("small.txt").c_str(), 'I', false), 0);
  EXPECT_EQ(ReadWholeFile(dir_.File("small.txt")), Served("small.txt"));
}

TEST_P(FtpServerTest, AsynchronousTransferReportsThroughTheCallback) {
  FtpSetAsynchronousMode();
  std::vector<std::pair<FtpEvent, std::int64_t>> events;
  const FtpNotify record = [&](FtpEvent event, std::int64_t value) {
    events.emplace_back(event, value);
  };
  const std::string local = dir_.File("big.bin");
  ASSERT_EQ(FtpRecvFile("big.bin", local.c_str(), 'I', true, record), 0);
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(FtpProcessEvents(), 0);
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(events.back(), std::make_pair(FtpEvent::kFinished, std::int64_t{0}));
  EXPECT_EQ(events[events.size() - 2], std::make_pair(FtpEvent::kProgress, std::int64_t{300000}));
  EXPECT_EQ(ReadWholeFile(local), Served("big.bin"));
}

// Sessions belong to their threads: two downloads at once do not mix their buffers.
TEST_P(FtpServerTest, SessionsOfTwoThreadsRunAtOnce) {
  std::vector<int> results(2, -100);
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&, i] {
      FtpInit();
      Configure();
      results[static_cast<std::size_t>(i)] =
          Login() + FtpRecvFile(i == 0 ? "udump/big.bin" : "udump/ora_1234.trc",
                                dir_.File("thread" + std::to_string(i)).c_str(), 'I', false);
      FtpRelease();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(results, (std::vector<int>{0, 0}));
  EXPECT_EQ(ReadWholeFile(dir_.File("thread0")), Served("big.bin"));
  EXPECT_EQ(ReadWholeFile(dir_.File("thread1")), Served("ora_1234.trc"));
}

INSTANTIATE_TEST_SUITE_P(
    RealServers, FtpServerTest,
    ::testing::Values(Mode{"proftpd", true}, Mode{"proftpd", false}, Mode{"pyftpdlib", true},
                      Mode{"pyftpdlib", false}, Mode{"vsftpd", true}, Mode{"vsftpd", false},
                      Mode{"proftpd_tls", true, true}, Mode{"proftpd_tls", false, true},
                      Mode{"vsftpd_tls", true, true}, Mode{"vsftpd_tls", false, true}),
    ModeName);

}  // namespace
}  // namespace transport
