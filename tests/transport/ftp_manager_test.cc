// CFtpManager against proftpd and pyftpdlib on 127.0.0.1, and against the fault server where
// a server has to misbehave: log-on, listings, copies, data streams and the session lookup.
#include <chrono>
#include <filesystem>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../support/platform.h"
#include "../support/raised.h"
#include "ftp_test_servers.h"
#include "transport/ftp_manager/ftp_manager.h"

namespace transport {
namespace {

using pelicor_test::FtpServers;
using pelicor_test::Raised;
using pelicor_test::ReadWholeFile;
using pelicor_test::ScratchDir;

class FtpManagerTest : public ::testing::Test {
 protected:
  void SetUp() override { PELICOR_REQUIRE_FTP_SERVERS(); }

  // A manager logged on to `server` in `udump`, working in the test's directory.
  // The data mode stays the transport's own (passive first) unless `mode` says otherwise.
  std::unique_ptr<CFtpManager> Connect(const std::string& server, const std::string& udump,
                                       FtpDataMode mode = FtpDataMode::kPassiveThenActive,
                                       int timeout = 5) {
    const FtpServers* servers = FtpServers::Get();
    auto manager = std::make_unique<CFtpManager>();
    FtpConnectInfo info;
    info.SetConnectInfo(servers->Address(server), servers->User(server), servers->Password(server),
                        udump);
    manager->SetConnectInfo(info);
    manager->SetWorkDir(work_.File(""));
    manager->SetDataMode(mode);
    manager->SetTimeOut(timeout);
    manager->Init();
    return manager;
  }
  // The real servers that came up.
  static std::vector<std::string> RealServers() {
    std::vector<std::string> up;
    for (const char* server : {"proftpd", "pyftpdlib", "vsftpd"}) {
      if (FtpServers::Get()->Has(server)) up.push_back(server);
    }
    return up;
  }
  std::vector<std::string> ReadAllLines(CFtpManager& manager) {
    std::vector<std::string> lines;
    while (const char* line = manager.ReadLine()) lines.emplace_back(line);
    return lines;
  }
  std::string Served(const std::string& path) const {
    return ReadWholeFile(FtpServers::Get()->Served(path));
  }

  ScratchDir work_;
};

TEST_F(FtpManagerTest, StreamStartsAtTheOffsetOrReadsUpToIt) {
  const std::string trace = Served("traces/sample_9i.trc");
  for (const std::string& server : RealServers()) {
    for (const FtpDataMode mode : {FtpDataMode::kPassive, FtpDataMode::kActive}) {
      SCOPED_TRACE(server + (mode == FtpDataMode::kPassive ? " passive" : " active"));
      auto manager = Connect(server, "traces", mode);
      manager->OpenDataStream("sample_9i.trc", 1000);
      std::string rest;
      for (const std::string& line : ReadAllLines(*manager)) rest += line;
      EXPECT_EQ(manager->CloseDataStream(), 0);
      EXPECT_EQ(rest, trace.substr(1000));
      // Past the end: the server refuses, the stream starts over and skips everything.
      manager->OpenDataStream("sample_9i.trc", 100000);
      EXPECT_EQ(manager->ReadLine(), nullptr);
      manager->CloseDataStream();
    }
  }
}

// A server without REST sends "line 00000\n" ... "line 00999\n" from the start; exactly the
// offset is skipped, below, at and above one block of 4096 bytes.
TEST_F(FtpManagerTest, RefusedRestSkipsExactlyTheOffset) {
  const struct {
    std::uint64_t offset;
    const char* first;
    std::size_t lines;  // handed out in all
  } cases[] = {{25, "e 00002\n", 998},
               {4000, "363\n", 637},
               {4096, " 00372\n", 628},
               {5010, "00455\n", 545},
               {11000, nullptr, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.offset);
    auto manager = Connect("rest_refused", "udump", FtpDataMode::kActive);
    manager->OpenDataStream("numbered.trc", c.offset);
    const std::vector<std::string> lines = ReadAllLines(*manager);
    EXPECT_EQ(lines.size(), c.lines);
    EXPECT_EQ(lines.empty() ? std::string() : lines.front(), c.first ? c.first : "");
    EXPECT_EQ(manager->CloseDataStream(), 0);
  }
  // The transcript shows the retry from the start.
  const std::string transcript = FtpServers::Get()->Transcript("rest_refused");
  EXPECT_TRUE(std::regex_match(transcript, std::regex("USER pelicor\nPASS trace-fetch\nCWD udump\n"
                                                      "TYPE I\nPORT .*\nREST 11000\nPORT .*\n"
                                                      "RETR numbered.trc\n")))
      << transcript;
  auto manager = Connect("rest_refused", "udump");
  manager->OpenDataStream("numbered.trc", 5010);
  EXPECT_EQ(manager->GetFileSize("numbered.trc"), 11000u);  // as announced for the open stream
}

// A data connection that stalls fails after one time-out, and closing it (and the session)
// waits no more.
TEST_F(FtpManagerTest, StalledStreamFailsWithinOneTimeOut) {
  auto manager = Connect("data_stall", "udump", FtpDataMode::kPassiveThenActive, 1);
  const auto start = std::chrono::steady_clock::now();
  manager->OpenDataStream("ora_1.trc", 0);
  EXPECT_NE(Raised([&] { ReadAllLines(*manager); }).find("Connection on data-port failed"),
            std::string::npos);
  EXPECT_NE(Raised([&] { manager->CloseDataStream(); }), "");
  manager->Close();  // no QUIT the stalled server would never answer
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 2.5);
}

TEST_F(FtpManagerTest, LastLineWithoutLineFeedIsNeverHandedOut) {
  auto manager = Connect("proftpd", "traces");
  manager->OpenDataStream("no_final_lf.trc", 0);
  EXPECT_EQ(ReadAllLines(*manager), (std::vector<std::string>{"line one\n", "line two\r\n"}));
  EXPECT_EQ(manager->ReadLine(), nullptr);
  manager->CloseDataStream();
}

TEST_F(FtpManagerTest, BrokenDataConnectionFailsTheRead) {
  PELICOR_SKIP_UNDER_WINE(pelicor_test::kWineLosesResets);
  auto manager = Connect("data_drop", "udump");
  manager->OpenDataStream("ora_1.trc", 0);
  EXPECT_EQ(Raised([&] { ReadAllLines(*manager); }),
            "FtpManager|CFtpManager::ReadLine|FtpRecvThroughDataConnection|FTP failed to "
            "read the data stream of ora_1.trc from " +
                FtpServers::Get()->Address("data_drop") + ": Connection on data-port failed");
}

// "name size", or the texts of the exception the lookup raised.
std::string Lookup(CFtpManager& manager, const std::string& session) {
  std::string name;
  std::string raised = Raised([&] {
    const std::uint32_t size = manager.GetTraceFileNameFromPID(session, &name);
    name += " " + std::to_string(size);
  });
  return raised.empty() ? name : raised;
}

// The files of lookup/ are in scripts/ftp/servers.sh. proftpd and vsftpd expand the pattern
// themselves, pyftpdlib refuses it and the names are matched here; sizes come from SIZE. (The
// listings in either data mode: FtpServerTest.ListsNamesAndDetails.)
TEST_F(FtpManagerTest, FindsTheTraceFileOfASession) {
  const std::string failure = "FtpManager|FtpManger|GetFileList|FTP ";
  const std::pair<const char*, std::string> cases[] = {
      {"4711", "4711_ora.trc 4711"},
      {"55", "55_ora_00055.trc 5555"},     // of three candidates, with its own size
      {"4242", "orcl_ora_4242.trc 4242"},  // as Oracle names it: found by *4242*.trc
      {"12", failure + "did not find a marched trace file for the session!"},
      {"00077", failure + "did not find a unique converted trace file for the session!"},
  };
  for (const std::string& server : RealServers()) {
    auto manager = Connect(server, "lookup");
    for (const auto& [session, expected] : cases) {
      SCOPED_TRACE(server + " " + session);
      EXPECT_EQ(Lookup(*manager, session), expected);
    }
    manager->Close();
  }
  // No name at all: proftpd answers 450 to both patterns.
  auto none = Connect("proftpd", "lookup");
  EXPECT_EQ(Lookup(*none, "99"), failure + "failed to get trace file for the session!");
  none.reset();
  auto manager = Connect("proftpd", "lookup");
  EXPECT_EQ(Lookup(*manager, "55"), "55_ora_00055.trc 5555");
  // In the server's order, which need not be the names' order; each line ends in CR LF.
  std::istringstream listing(ReadWholeFile(work_.File("FtpTraceFileListPID.txt")));
  std::set<std::string> names;
  for (std::string line; std::getline(listing, line);) names.insert(line);
  EXPECT_EQ(names, (std::set<std::string>{"551_ora.trc\r", "55_ora.trc\r", "55_ora_00055.trc\r"}));
}

TEST_F(FtpManagerTest, RefusesListedNamesThatLeaveTheWorkDirectory) {
  // The fault server lists one name for each session.
  const std::pair<const char*, const char*> listings[] = {
      {"1", "../1_evil.trc"}, {"2", "2/evil.trc"}, {"3", "3\\evil.trc"}, {"4", "4_..trc"}};
  for (const auto& [session, listed] : listings) {
    SCOPED_TRACE(listed);
    auto manager = Connect("hostile_listing", "udump");
    EXPECT_EQ(Lookup(*manager, session),
              "FtpManager|FtpManger|GetFileList|FTP refused the trace file name " +
                  std::string(listed) + " from the server! A file name must not hold a path.");
  }
  // Nothing but the listing was written.
  EXPECT_EQ(pelicor_test::FileNames(work_.path()),
            std::vector<std::string>{"FtpTraceFileListPID.txt"});
  auto manager = Connect("normal", "udump");  // lists ora_1234.trc and ora_1234_extra.trc
  EXPECT_EQ(Lookup(*manager, "999"),
            "FtpManager|FtpManger|GetFileList|FTP did not find a trace file for the "
            "session!");
}

// Sessions belong to their managers: a second one on the same thread lists while the first
// holds a data stream half read, and the first goes on where it was.
TEST_F(FtpManagerTest, TwoManagersOnOneThreadKeepTheirOwnSessions) {
  auto streaming = Connect("proftpd", "traces");
  streaming->OpenDataStream("repeated_9i.trc", 0);
  std::string streamed = streaming->ReadLine();
  auto listing = Connect("pyftpdlib", "traces");
  listing->GetFileList(0, "s*.trc");
  EXPECT_EQ(ReadWholeFile(work_.File("FtpTraceFileList.txt")), "sample_9i.trc\r\n");
  listing->Close();
  listing.reset();
  for (const std::string& line : ReadAllLines(*streaming)) streamed += line;
  EXPECT_EQ(streaming->CloseDataStream(), 0);
  EXPECT_EQ(streamed, Served("traces/repeated_9i.trc"));
  streaming->Close();
}

// Init names what is wrong: a missing setting, a server that asks for TLS, what failed in FTP
// over TLS and where, a refused log-on or trace directory; the client's own reason is kept for
// the command where the message does not hold it.
TEST_F(FtpManagerTest, InitNamesWhatIsWrong) {
  const FtpServers* servers = FtpServers::Get();
  const TlsOptions system_trust{"", true};
  const TlsOptions test_ca{servers->Certificate(), true};
  const TlsOptions missing_ca{"/no/such/ca.pem", true};
  const std::string logon =
      "FTP failed to logon with the given info! Check ftp hostname/username/password.";
  const struct {
    std::string host;
    const TlsOptions* tls;  // null: plain FTP
    bool own_account;       // the servers' account, else scott/wrong
    const char* udump;
    std::string message;
    std::string reason;
  } cases[] = {
      // Nothing listens on port 1: a connect would fail with the log-on message.
      {"127.0.0.1:1", nullptr, true, "", "hostname/username/password/udump, one of them is empty!",
       ""},
      {servers->Address("proftpd"), nullptr, true, "no-such-dir",
       "FTP failed to change to trace directory! Check FTP qualified trace path.",
       "File action not taken (550 no-such-dir: No such file or directory)"},
      {servers->Address("tls_required"), nullptr, false, "udump",
       "FTP failed to logon: " + servers->Address("tls_required") +
           " requires an encrypted connection (FTP over TLS), which is not switched on! Server "
           "reply: 530 Non-anonymous sessions must use encryption.",
       ""},
      {servers->Address("proftpd_tls"), nullptr, false, "udump",
       "FTP failed to logon: " + servers->Address("proftpd_tls") +
           " requires an encrypted connection (FTP over TLS), which is not switched on! Server "
           "reply: 550 SSL/TLS required on the control channel",
       ""},
      // The fault server knows no AUTH; its transcript shows that nothing followed.
      {servers->Address("tls_required"), &test_ca, false, "udump",
       "FTP over TLS refused by " + servers->Address("tls_required") +
           ", so the user name and password were not sent! Server reply: 500 Unknown command.",
       ""},
      {servers->Address("proftpd_tls", "localhost"), &system_trust, false, "udump",
       "FTP failed to secure the connection to " + servers->Address("proftpd_tls", "localhost") +
           ": certificate verify failed: self-signed certificate",
       ""},
      {servers->Address("proftpd_tls"), &test_ca, false, "udump",
       "FTP failed to secure the connection to " + servers->Address("proftpd_tls") +
           ": certificate verify failed: IP address mismatch",
       ""},
      {servers->Address("proftpd_tls", "localhost"), &missing_ca, false, "udump",
       "FTP failed to secure the connection to " + servers->Address("proftpd_tls", "localhost") +
           ": cannot load the CA file /no/such/ca.pem: No such file or directory",
       ""},
      {servers->Address("tls_silent"), &test_ca, false, "udump",
       "FTP failed to secure the connection to " + servers->Address("tls_silent") +
           ": the TLS handshake timed out",
       ""},
      {servers->Address("proftpd"), nullptr, false, "udump", logon,
       "Server rejects userid/passwd (530 Login incorrect.)"},
      {"no-such-host.invalid", nullptr, false, "udump", logon, "Can not resolve host adress"},
      {servers->Address("silent"), nullptr, false, "udump", logon, "Host does not send an answer"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.host);
    if (c.tls != nullptr && !TlsAvailable()) continue;
    CFtpManager manager;
    manager.SetConnectInfo(c.host.c_str(), c.own_account ? servers->User().c_str() : "scott",
                           c.own_account ? servers->Password().c_str() : "wrong", c.udump);
    manager.SetTimeOut(1);
    if (c.tls != nullptr) manager.SetTls(true, *c.tls);
    EXPECT_EQ(Raised([&] { manager.Init(); }), "FtpManager|FtpManger|Init|" + c.message);
    EXPECT_EQ(manager.LastFailureReason(), c.reason);
    EXPECT_EQ(manager.IsLoggedOn(), c.own_account && *c.udump != '\0');
    EXPECT_FALSE(manager.IsInitialised());
  }
  if (TlsAvailable()) {
    EXPECT_EQ(servers->Transcript("tls_required"), "AUTH TLS\n");
  }
  CFtpManager manager;
  EXPECT_EQ(Raised([&] { manager.SetConnectInfo("h", "u", nullptr, "d"); }),
            "FtpManager|CFtpManager|SetConnectInfo|Invalid FTP connection information!");
}

TEST_F(FtpManagerTest, ListsAndCopiesIntoTheWorkDirectory) {
  auto manager = Connect("proftpd", "traces");
  manager->GetFileList(2, "*.trc");
  EXPECT_FALSE(std::filesystem::exists(work_.File("FtpTraceFileList.txt")));
  manager->GetFileList(0, "*.trc");
  EXPECT_EQ(ReadWholeFile(work_.File("FtpTraceFileList.txt")),
            "no_final_lf.trc\r\nrepeated_9i.trc\r\nsample_9i.trc\r\n");
  manager->GetFileList(1, "s*.trc");
  EXPECT_NE(ReadWholeFile(work_.File("FtpTraceFileList.txt")).find(" 4729 "), std::string::npos);

  manager->RetrieveFile("no_final_lf.trc");  // ASCII: proftpd sends CR LF
  EXPECT_EQ(ReadWholeFile(work_.File("no_final_lf.trc")), "line one\r\nline two\r\nno line feed");
  manager->RetrieveFile("sample_9i.trc", 'I', 4000);
  EXPECT_EQ(ReadWholeFile(work_.File("sample_9i.trc")),
            Served("traces/sample_9i.trc").substr(4000));
  EXPECT_EQ(manager->GetFileSize("repeated_9i.trc"), 300u * 4729u);
  // SIZE refused (the fault server knows no SIZE): the size the RETR reply announces.
  auto probing = Connect("normal", "udump", FtpDataMode::kPassive);
  EXPECT_EQ(probing->GetFileSize("x.trc"), 10000u);
  probing->Close();
  EXPECT_EQ(FtpServers::Get()->Transcript("normal"),
            "USER pelicor\nPASS trace-fetch\nCWD udump\nTYPE I\nSIZE x.trc\nEPSV\nPASV\n"
            "RETR x.trc\nQUIT\n");
  EXPECT_EQ(Raised([&] { manager->RetrieveFile("missing.trc"); }),
            "FtpManager|CFtpManager::RetrieveFile|FtpOpenDataConnection|FTP failed to "
            "retrieve file.");
  manager->SetWorkDir(work_.File("no-such-dir"));
  EXPECT_EQ(Raised([&] { manager->RetrieveFile("sample_9i.trc", 'I', 0); }),
            "FtpManager|NfsManger::GetTraceFileList|_lcreat|No such file or directory");
  manager->Close();

  // pyftpdlib refuses patterns: it lists the directory and the names are matched here.
  auto other = Connect("pyftpdlib", "traces");
  other->GetFileList(1, "*.trc");
  std::istringstream long_form(ReadWholeFile(work_.File("FtpTraceFileList.txt")));
  std::set<std::string> names;
  for (std::string line; std::getline(long_form, line);)
    names.insert(line.substr(line.rfind(' ') + 1));
  EXPECT_EQ(names,
            (std::set<std::string>{"no_final_lf.trc\r", "repeated_9i.trc\r", "sample_9i.trc\r"}));
  EXPECT_EQ(Raised([&] { other->GetFileList(0, "nothing*.trc"); }), "");
  EXPECT_EQ(ReadWholeFile(work_.File("FtpTraceFileList.txt")), "");
  // It announces no size for an open stream.
  other->OpenDataStream("sample_9i.trc", 0);
  EXPECT_EQ(other->GetFileSize("sample_9i.trc"), 0u);
  EXPECT_EQ(ReadAllLines(*other).size(), 86u);
  other->CloseDataStream();
}

}  // namespace
}  // namespace transport
