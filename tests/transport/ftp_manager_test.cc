// CFtpManager against proftpd and pyftpdlib on 127.0.0.1, and against the fault server where
// a server has to misbehave: log-on, listings, copies, data streams and the session lookup.
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
  std::unique_ptr<CFtpManager> Connect(const std::string& server, const std::string& udump,
                                       bool passive = false) {
    const FtpServers* servers = FtpServers::Get();
    auto manager = std::make_unique<CFtpManager>();
    FtpConnectInfo info;
    info.SetConnectInfo(servers->Address(server), servers->User(), servers->Password(), udump);
    manager->SetConnectInfo(info);
    manager->SetWorkDir(work_.File(""));
    manager->SetPassiveMode(passive);
    manager->SetTimeOut(5);
    manager->Init();
    return manager;
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
  for (const char* server : {"proftpd", "pyftpdlib"}) {
    SCOPED_TRACE(server);
    auto manager = Connect(server, "traces");
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
  // A server without REST: the transcript shows the retry from the start.
  auto manager = Connect("rest_refused", "udump");
  manager->OpenDataStream("numbered.trc", 5010);  // inside "line 00455\n"
  EXPECT_STREQ(manager->ReadLine(), "00455\n");
  EXPECT_STREQ(manager->ReadLine(), "line 00456\n");
  EXPECT_EQ(manager->GetFileSize("numbered.trc"), 11000u);  // as announced for the open stream
  EXPECT_EQ(ReadAllLines(*manager).size(), 1000u - 457u);
  manager->CloseDataStream();
  const std::string transcript = FtpServers::Get()->Transcript("rest_refused");
  EXPECT_TRUE(std::regex_match(transcript, std::regex("USER pelicor\nPASS trace-fetch\nCWD udump\n"
                                                      "TYPE I\nPORT .*\nREST 5010\nPORT .*\n"
                                                      "RETR numbered.trc\n")))
      << transcript;
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

// proftpd expands SESSION*.trc in lookup/ (see scripts/ftp/servers.sh for the files).
TEST_F(FtpManagerTest, FindsTheTraceFileOfASession) {
  const std::string failure = "FtpManager|FtpManger|GetFileList|FTP ";
  const std::pair<const char*, std::string> cases[] = {
      {"4711", "4711_ora.trc 4711"},
      {"55", "55_ora_00055.trc 5555"},  // of three candidates, with its own size
      {"12", failure + "did not find a marched trace file for the session!"},
      {"00077", failure + "did not find a unique converted trace file for the session!"},
      {"99", failure + "failed to get trace file for the session!"},  // proftpd: 450
  };
  for (const auto& [session, expected] : cases) {
    SCOPED_TRACE(session);
    auto manager = Connect("proftpd", "lookup");
    EXPECT_EQ(Lookup(*manager, session), expected);
    manager->Close();
  }
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
  std::vector<std::string> written;
  for (const auto& entry : std::filesystem::directory_iterator(work_.File(""))) {
    written.push_back(entry.path().filename().string());
  }
  EXPECT_EQ(written, std::vector<std::string>{"FtpTraceFileListPID.txt"});
  auto manager = Connect("normal", "udump");  // lists ora_1234.trc and ora_1234_extra.trc
  EXPECT_EQ(Lookup(*manager, "999"),
            "FtpManager|FtpManger|GetFileList|FTP did not find a trace file for the "
            "session!");
}

TEST_F(FtpManagerTest, InitNamesWhatIsWrong) {
  const FtpServers* servers = FtpServers::Get();
  const std::string host = servers->Address("proftpd");
  const std::string user = servers->User();
  const std::string password = servers->Password();
  struct Case {
    std::string host, password, udump, message;
    bool logged_on;
  } cases[] = {
      // Nothing listens on port 1: a connect would fail with the log-on message.
      {"127.0.0.1:1", password, "", "hostname/username/password/udump, one of them is empty!",
       false},
      {host, "wrong", "udump",
       "FTP failed to logon with the given info! Check ftp hostname/username/password.", false},
      {host, password, "no-such-dir",
       "FTP failed to change to trace directory! Check FTP qualified trace path.", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    CFtpManager manager;
    manager.SetConnectInfo(c.host.c_str(), user.c_str(), c.password.c_str(), c.udump.c_str());
    EXPECT_EQ(Raised([&] { manager.Init(); }), "FtpManager|FtpManger|Init|" + c.message);
    EXPECT_EQ(manager.IsLoggedOn(), c.logged_on);
    EXPECT_FALSE(manager.IsInitialised());
  }
  CFtpManager manager;
  EXPECT_EQ(Raised([&] { manager.SetConnectInfo("h", "u", nullptr, "d"); }),
            "FtpManager|CFtpManager|SetConnectInfo|Invalid FTP connection information!");
  // The thread's FTP session belongs to `manager`.
  EXPECT_EQ(Raised([] { CFtpManager second; }),
            "FtpManager|CFtpManager::Init|FtpInit|FTP failed to initialize!");
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
  EXPECT_EQ(Raised([&] { manager->RetrieveFile("missing.trc"); }),
            "FtpManager|CFtpManager::RetrieveFile|FtpOpenDataConnection|FTP failed to "
            "retrieve file.");
  manager->SetWorkDir(work_.File("no-such-dir"));
  EXPECT_EQ(Raised([&] { manager->RetrieveFile("sample_9i.trc", 'I', 0); }),
            "FtpManager|NfsManger::GetTraceFileList|_lcreat|No such file or directory");
  manager->Close();
  manager.reset();  // the thread's one FTP session

  auto other = Connect("pyftpdlib", "traces");  // no patterns, no sizes
  EXPECT_EQ(Raised([&] { other->GetFileList(0, "*.trc"); }),
            "FtpManager|FtpManger|GetFileList|FTP failed to get remote file listing!");
  other->OpenDataStream("sample_9i.trc", 0);
  EXPECT_EQ(other->GetFileSize("sample_9i.trc"), 0u);
  EXPECT_EQ(ReadAllLines(*other).size(), 86u);
  other->CloseDataStream();
}

}  // namespace
}  // namespace transport
