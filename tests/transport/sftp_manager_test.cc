// CSftpManager against OpenSSH's sshd on 127.0.0.1 (and the proxy in front of it that drops
// connections mid-transfer): host keys, log-on, listings, the session lookup, copies and line
// streams.
#include <filesystem>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../support/raised.h"
#include "sftp_test_server.h"
#include "transport/sftp/sftp_manager.h"

namespace transport {
namespace {

using pelicor_test::Raised;
using pelicor_test::ReadWholeFile;
using pelicor_test::ScratchDir;
using pelicor_test::SftpServer;
using pelicor_test::WriteWholeFile;

constexpr const char* kPrefix = "SftpManager|CSftpManager|";

class SftpManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    PELICOR_REQUIRE_SFTP_SERVER();
    server_ = SftpServer::Get();
    std::string known;
    for (const int port : {server_->Port(), server_->CuttingPort(), server_->StallingPort()}) {
      known += SftpServer::KnownHostsLine(port, server_->HostKey());
    }
    WriteWholeFile(known_hosts_, known);
  }

  // Options for the account in `udump` (relative to the served tree), logging on by key.
  sftp::SftpOptions Options(const std::string& udump, int port = 0) const {
    sftp::SftpOptions options;
    options.host = "127.0.0.1";
    options.port = port != 0 ? port : server_->Port();
    options.user = server_->User();
    options.udump = server_->Served(udump).string();
    options.identity = server_->Key("id_client");
    options.known_hosts = known_hosts_;
    options.timeout_seconds = 10;
    return options;
  }
  std::unique_ptr<CSftpManager> Connect(const sftp::SftpOptions& options) {
    auto manager = std::make_unique<CSftpManager>();
    manager->SetOptions(options);
    manager->SetWorkDir(work_.str());
    manager->Init();
    return manager;
  }
  static std::vector<std::string> AllLines(CSftpManager& manager) {
    std::vector<std::string> lines;
    std::string_view line;
    while (manager.ReadNextLine(&line)) lines.emplace_back(line);
    return lines;
  }
  std::string Address(int port) const { return "127.0.0.1:" + std::to_string(port); }

  const SftpServer* server_ = nullptr;
  ScratchDir work_;
  std::string known_hosts_ = work_.File("known_hosts");
};

// An unknown key is refused until accepted, then recorded and trusted; a changed one is refused
// even when new keys are accepted, and the recorded key stays.
TEST_F(SftpManagerTest, HostKeysUnknownUntilAcceptedAndChangedNever) {
  sftp::SftpOptions options = Options("traces");
  options.known_hosts = work_.File("new_known_hosts");
  const std::string refused = kPrefix + std::string("Init|SFTP refused ") + Address(options.port) +
                              ": its host key (" + server_->HostKeyFingerprint() + ") is not ";
  EXPECT_EQ(Raised([&] { Connect(options); }),
            refused + "known in " + options.known_hosts +
                ". Check the fingerprint, then accept the new host key once to record it.");
  EXPECT_FALSE(std::filesystem::exists(options.known_hosts));
  options.accept_new_host_key = true;
  EXPECT_EQ(Raised([&] { Connect(options); }), "");
  EXPECT_EQ(ReadWholeFile(options.known_hosts),
            SftpServer::KnownHostsLine(options.port, server_->HostKey()));
  options.accept_new_host_key = false;
  EXPECT_EQ(Raised([&] { Connect(options); }), "") << "the recorded key is trusted";

  const std::string stale =
      SftpServer::KnownHostsLine(options.port, server_->PublicKey("id_other.pub"));
  WriteWholeFile(options.known_hosts, stale);
  options.accept_new_host_key = true;
  EXPECT_EQ(Raised([&] { Connect(options); }),
            refused + "the one recorded in " + options.known_hosts +
                ". Someone may be intercepting the connection; if the server's key was replaced "
                "on purpose, remove its old entry (ssh-keygen -R) first.");
  EXPECT_EQ(ReadWholeFile(options.known_hosts), stale) << "the recorded key stays";
}

TEST_F(SftpManagerTest, LogsOnByKeyOrPasswordAndSaysWhatWasRefused) {
  struct Case {
    const char* what;
    std::string identity;
    std::string password;
    std::string raised;
  };
  const std::string failed = kPrefix + std::string("Init|SFTP failed to log on to ") +
                             Address(server_->Port()) + " as " + server_->User() + ": ";
  const std::string other = server_->Key("id_other");
  const std::vector<Case> cases = {
      {"key", server_->Key("id_client"), "", ""},
      {"password after the default keys", "", server_->Password(), ""},
      {"password after a refused key", other, server_->Password(), ""},
      {"wrong password", "", "wrong",
       failed + "the server accepted neither the keys of the SSH agent and ~/.ssh nor the "
                "password."},
      {"refused key, no password", other, "",
       failed + "the server did not accept the key " + other + ", and no password was given."},
      {"unreadable key file", work_.File("missing_key"), "",
       kPrefix + std::string("Init|SFTP cannot read the key file ") + work_.File("missing_key") +
           " (a key with a passphrase must come through the SSH agent)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sftp::SftpOptions options = Options("traces");
    options.identity = c.identity;
    options.password = c.password;
    EXPECT_EQ(Raised([&] { Connect(options); }), c.raised);
  }
}

TEST_F(SftpManagerTest, RefusesMissingSettingsAndAMissingTraceDirectory) {
  sftp::SftpOptions options = Options("traces");
  options.udump.clear();
  EXPECT_EQ(Raised([&] { Connect(options); }),
            kPrefix + std::string("Init|SFTP needs a host, a user and a trace directory; one of "
                                  "them is empty!"));
  options = Options("nowhere");
  EXPECT_EQ(Raised([&] { Connect(options); }),
            kPrefix + std::string("Init|SFTP failed to change to trace directory ") +
                options.udump + " on " + Address(options.port) + ": no such file or directory");
  options = Options("traces", 1);  // nothing listens on port 1
  EXPECT_NE(Raised([&] { Connect(options); }).find("|Init|SFTP failed to connect to 127.0.0.1:1: "),
            std::string::npos);
}

TEST_F(SftpManagerTest, ListsNamesOrSizesAndTimesSortedByName) {
  auto manager = Connect(Options("lookup"));
  manager->GetFileList(0, "*_00077.TRC");
  EXPECT_EQ(ReadWholeFile(work_.File(CSftpManager::kListingFileName)),
            "a_00077.trc\nb_00077.trc\n");
  manager->GetFileList(1, "orcl_ora_55*");
  const std::string listing = ReadWholeFile(work_.File(CSftpManager::kListingFileName));
  const std::regex line(
      " +([0-9]+) [01][0-9]/[0-3][0-9]/20[0-9][0-9] [0-2][0-9]:[0-5][0-9] (\\S+)\n");
  std::string sizes_and_names;
  for (std::sregex_iterator it(listing.begin(), listing.end(), line), end; it != end; ++it) {
    sizes_and_names += (*it)[1].str() + " " + (*it)[2].str() + "\n";
  }
  EXPECT_EQ(sizes_and_names, "550 orcl_ora_55.trc\n5510 orcl_ora_551.trc\n") << listing;
  manager->GetFileList(0, "*.none");
  EXPECT_EQ(ReadWholeFile(work_.File(CSftpManager::kListingFileName)), "");
}

TEST_F(SftpManagerTest, FindsTheSessionsTraceFileByTheShareRule) {
  struct Case {
    const char* pid;
    std::string found;  // "name size", or what was raised
  };
  const std::string lookup = kPrefix + std::string("GetTraceFileNameFromPID|");
  const std::vector<Case> cases = {
      {"4711", "orcl_ora_4711.trc 4711"},  // the .trm beside it is no candidate
      {"55", "orcl_ora_00055.trc 5555"},   // three candidates, one holds "00055"
      {"12", lookup + "SFTP did not find a matched trace file for the session!"},
      {"77", lookup + "SFTP did not find a unique converted trace file for the session! Check "
                      "the trace files in the user_dump_dest. Clean up if necessary."},
      {"999", lookup + "SFTP did not find a trace file for the session!"},
  };
  auto manager = Connect(Options("lookup"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pid);
    std::string found;
    const std::string raised = Raised([&] {
      std::string name;
      const std::uint64_t size = manager->GetTraceFileNameFromPID(c.pid, &name);
      found = name + " " + std::to_string(size);
    });
    EXPECT_EQ(raised.empty() ? found : raised, c.found);
  }
}

TEST_F(SftpManagerTest, CopiesWholeFilesAndRefusesNamesThatLeaveTheDirectory) {
  auto manager = Connect(Options("traces"));
  std::uint64_t last_progress = 0;
  const std::uint64_t copied =
      manager->RetrieveFile("repeated_9i.trc", work_.str(),
                            [&](std::uint64_t done, std::uint64_t) { last_progress = done; });
  const std::string served = ReadWholeFile(server_->Served("traces/repeated_9i.trc"));
  EXPECT_EQ(ReadWholeFile(work_.File("repeated_9i.trc")), served);
  EXPECT_EQ(copied, served.size());
  EXPECT_EQ(last_progress, served.size());

  for (const char* name : {"../traces/sample_9i.trc", "sub/a.trc", "a\\b.trc", "..", ""}) {
    SCOPED_TRACE(name);
    const std::string refused =
        std::string("|SFTP refused the file name ") + name + ": a file name must not hold a path.";
    EXPECT_EQ(Raised([&] { manager->RetrieveFile(name, work_.str(), nullptr); }),
              kPrefix + std::string("RetrieveFile") + refused);
    EXPECT_EQ(Raised([&] { manager->OpenLines(name, 0); }),
              kPrefix + std::string("OpenDataStream") + refused);
  }
  EXPECT_EQ(Raised([&] { manager->RetrieveFile("missing.trc", work_.str(), nullptr); }),
            kPrefix + std::string("OpenDataStream|SFTP failed to open missing.trc on ") +
                Address(server_->Port()) + ": no such file or directory");
  EXPECT_EQ(pelicor_test::FileNames(work_.path()),
            (std::vector<std::string>{"known_hosts", "repeated_9i.trc"}));
}

TEST_F(SftpManagerTest, StreamsFromAnOffsetAndSeesWhatTheFileGrewBy) {
  // A trace still being written: the session's lines so far, the last one unfinished.
  const std::filesystem::path dir = server_->Served("growing_" + work_.path().filename().string());
  std::filesystem::create_directories(dir);
  const std::filesystem::path trace = dir / "orcl_ora_1.trc";
  WriteWholeFile(trace, "banner\nPARSING IN CURSOR #1\nEXEC #1:c=0\nFETCH #1:c=");
  auto manager = Connect(Options(dir.filename().string()));

  ASSERT_TRUE(manager->OpenLines("orcl_ora_1.trc", 7));
  std::string_view line;
  ASSERT_TRUE(manager->ReadNextLine(&line));
  EXPECT_EQ(line, "PARSING IN CURSOR #1\n");
  // Oracle goes on writing while we read.
  pelicor_test::AppendFile(trace, "0\r\nWAIT #1: nam='x'\nSTAT");
  EXPECT_EQ(AllLines(*manager),
            (std::vector<std::string>{"EXEC #1:c=0\n", "FETCH #1:c=0\r\n", "WAIT #1: nam='x'\n"}));
  EXPECT_EQ(manager->OpenedSize(), 51u);
  manager->CloseLines();

  // The next read starts where the last whole line ended.
  pelicor_test::AppendFile(trace, " #1 id=1\n");
  const std::uint64_t offset = 7 + 21 + 12 + 14 + 17;
  ASSERT_TRUE(manager->OpenLines("orcl_ora_1.trc", offset));
  EXPECT_EQ(AllLines(*manager), (std::vector<std::string>{"STAT #1 id=1\n"}));
  manager->CloseLines();
  std::filesystem::remove_all(dir);
}

TEST_F(SftpManagerTest, LostConnectionFailsTheStreamAndLeavesNoPartialCopy) {
  const sftp::SftpOptions options = Options("traces", server_->CuttingPort());
  // libssh's own words follow in brackets: they depend on whether it was sending or receiving
  // ("Socket error: disconnected", "Socket error: Broken pipe").
  const std::string lost = kPrefix +
                           std::string("ReadLine|SFTP failed to read repeated_9i.trc from ") +
                           Address(options.port) + ": the connection was lost (Socket error: ";
  const auto failure = [&](const std::string& raised) {
    return raised.compare(0, lost.size(), lost) == 0 ? lost + "...)" : raised;
  };
  {
    auto manager = Connect(options);
    ASSERT_TRUE(manager->OpenLines("repeated_9i.trc", 0));
    EXPECT_EQ(failure(Raised([&] { AllLines(*manager); })), lost + "...)");
  }
  // An older copy stays as it was.
  WriteWholeFile(work_.File("repeated_9i.trc"), "older copy\n");
  auto manager = Connect(options);
  EXPECT_EQ(
      failure(Raised([&] { manager->RetrieveFile("repeated_9i.trc", work_.str(), nullptr); })),
      lost + "...)");
  EXPECT_EQ(ReadWholeFile(work_.File("repeated_9i.trc")), "older copy\n");
  EXPECT_FALSE(std::filesystem::exists(work_.File("repeated_9i.trc.part")));
}

TEST_F(SftpManagerTest, SilentServerFailsTheStreamAfterTheTimeOut) {
  sftp::SftpOptions options = Options("traces", server_->StallingPort());
  options.timeout_seconds = 1;
  auto manager = Connect(options);
  ASSERT_TRUE(manager->OpenLines("repeated_9i.trc", 0));
  EXPECT_EQ(Raised([&] { AllLines(*manager); }),
            kPrefix + std::string("ReadLine|SFTP failed to read repeated_9i.trc from ") +
                Address(options.port) + ": no answer from the server for 1 s (time-out)");
}

}  // namespace
}  // namespace transport
