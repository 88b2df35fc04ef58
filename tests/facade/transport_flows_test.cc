// The methods of the share and of FTP, one parameterised suite where they do the same: listings,
// copies, the trace file of a server process and the offset it sets, validation, start-up and
// the statement document of what the session wrote after it; then what goes wrong over FTP.
#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "facade_fixture.h"

namespace facade_test {
namespace {

using facade::CPelicor;
struct Methods {
  int (CPelicor::*list)(std::uint16_t, std::string*);
  int (CPelicor::*list_pid)(const char*, std::string*);
  int (CPelicor::*copy)(const char*, std::string*);
  int (CPelicor::*of_pid)(const char*, std::uint16_t, std::string*, std::string*);
  int (CPelicor::*parse)(const char*, std::uint16_t, std::uint16_t, std::uint16_t, std::string*,
                         std::string*);
  const char* listing;
};
const Methods kShareMethods{&CPelicor::NfsGetTraceFileList, &CPelicor::NfsGetTraceFileListPID,
                            &CPelicor::NfsGetTraceFile,     &CPelicor::NfsGetTraceFilePID,
                            &CPelicor::NfsParseFile,        "NfsTraceFileList.txt"};
const Methods kFtpMethods{&CPelicor::FtpGetTraceFileList, &CPelicor::FtpGetTraceFileListPID,
                          &CPelicor::FtpGetTraceFile,     &CPelicor::FtpGetTraceFilePID,
                          &CPelicor::FtpParseFile,        "FtpTraceFileList.txt"};

// The lines of a listing file without their line ends, sorted (FTP lists in the server's order).
std::vector<std::string> Lines(const fs::path& path) {
  std::istringstream text(ReadWholeFile(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);)
    lines.push_back(line.substr(0, line.find('\r')));
  std::sort(lines.begin(), lines.end());
  return lines;
}

class TransportFlowsTest : public FtpFlowsTest, public ::testing::WithParamInterface<Where> {
 protected:
  bool Share() const { return GetParam() == kShare; }
  const Methods& M() const { return Share() ? kShareMethods : kFtpMethods; }
  // A trace file where the transport finds it.
  void Place(const std::string& name, const std::string& text) const {
    WriteWholeFile(Dir(GetParam()) / name, text);
  }
  void Append(const std::string& name, const std::string& text) const {
    AppendFile(Dir(GetParam()) / name, text);
  }
  std::string CopyOf(const std::string& text) const { return Share() ? text : AsciiCopy(text); }
  // The trace directory as the transport names it: the test's own, and one with 4711_ora.trc of
  // 4711 bytes (the FTP server's tree has it).
  std::string SessionDir() const { return Share() ? udump().string() : Udump(); }
  std::string MakeLookupDir() const {
    if (!Share()) return "/lookup";
    fs::create_directories(root() / "lookup");
    WriteWholeFile(root() / "lookup" / "4711_ora.trc", std::string(4711, 'x'));
    return (root() / "lookup").string();
  }
  std::string StoredUdump() const {
    return Share() ? service_.NfsInfo().GetUdump() : service_.FtpInfo().GetUdump();
  }
  int Validate(const std::string& dir, const char* pid) {
    if (Share()) return service_.NfsValidation(dir.c_str(), pid, &msg_);
    return service_.FtpValidation(Host().c_str(), Servers().User().c_str(),
                                  Servers().Password().c_str(), dir.c_str(), pid, &msg_);
  }
  int StartUp(const std::string& dir, const char* pid) {
    if (Share()) return service_.ZantivNfsTrcStartUp(dir.c_str(), pid, &out_, &msg_);
    return service_.ZantivFtpTrcStartUp(Host().c_str(), Servers().User().c_str(),
                                        Servers().Password().c_str(), dir.c_str(), pid, &out_,
                                        &msg_);
  }
};

INSTANTIATE_TEST_SUITE_P(Transports, TransportFlowsTest, ::testing::Values(kShare, kFtp));

// Style 0 lists names, style 1 sizes too; the listing of a process id is in the long form.
TEST_P(TransportFlowsTest, ListsTheTraceFilesIntoTheWorkingDirectory) {
  for (const char* name : {"a_ora_55.trc", "55_ora.trc", "notes.txt"}) Place(name, name);
  const fs::path listing = work() / M().listing;
  ASSERT_EQ((service_.*M().list)(0, &msg_), 0) << msg_;
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(Lines(listing), (std::vector<std::string>{"55_ora.trc", "a_ora_55.trc"}));
  ASSERT_EQ((service_.*M().list)(1, &msg_), 0) << msg_;
  const std::vector<std::string> long_form = Lines(listing);
  ASSERT_EQ(long_form.size(), 2u);
  EXPECT_NE(long_form[0].find(" 10 "), std::string::npos) << long_form[0];
  ASSERT_EQ((service_.*M().list_pid)("55", &msg_), 0) << msg_;
  const std::vector<std::string> of_pid = Lines(listing);
  ASSERT_EQ(of_pid.size(), 1u);
  EXPECT_NE(of_pid[0].find(" 12 "), std::string::npos) << of_pid[0];
  EXPECT_EQ(of_pid[0].substr(of_pid[0].size() - 13), " a_ora_55.trc");
}

// The lookup's size is where the session's new lines start: a later parse reads only those.
TEST_P(TransportFlowsTest, TraceFileOfAProcessSetsTheStartOffset) {
  const std::string name = "4242_orcl.trc";
  const std::string trace = Fixture(kTrace);
  Place(name, trace);
  ASSERT_EQ((service_.*M().of_pid)("4242", 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(out_, name);
  EXPECT_EQ(service_.TraceFileName(), name);
  EXPECT_EQ(service_.StartOffset(), trace.size());
  EXPECT_FALSE(fs::exists(work() / name));

  Append(name, trace);
  ASSERT_EQ((service_.*M().of_pid)("4242", 1, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / name), CopyOf(trace + trace));
  EXPECT_EQ(service_.StartOffset(), 2 * trace.size());
  fs::remove(work() / name);
  ASSERT_EQ((service_.*M().copy)(name.c_str(), &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / name), CopyOf(trace + trace));

  Append(name, trace);
  ASSERT_EQ((service_.*M().parse)(name.c_str(), 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(pelicor_test::ReadTextFile(work() / "4242_orcl.xml"),
            Fixture("orcl_ora_4242.calls.xml"));
}

// A start-up stores its settings before the lookup, so they stay when it fails; neither it nor a
// validation copies or parses. The statement document covers what the session wrote after the
// start-up. A validation uses its own directory and keeps the stored one.
TEST_P(TransportFlowsTest, StartUpStatementDocumentAndValidation) {
  const std::string lookup = MakeLookupDir();
  EXPECT_EQ(StartUp(lookup, "99"), 1);
  EXPECT_EQ(msg_, Share() ? "NFS failed to open trace file for the session!"
                          : "FTP failed to get trace file for the session!");
  EXPECT_EQ(out_, "");
  EXPECT_EQ(StoredUdump(), lookup);
  EXPECT_EQ(service_.Transport(), facade::kNoTransport);

  const std::string name = "4242_orcl.trc";
  Place(name, Fixture(kTrace));
  ASSERT_EQ(StartUp(SessionDir(), "4242"), 0) << msg_;
  EXPECT_EQ(out_, "4242_orcl.xml");
  EXPECT_EQ(StoredUdump(), SessionDir());
  EXPECT_EQ(service_.Transport(), Share() ? facade::kFileShare : facade::kFtp);
  EXPECT_EQ(service_.StartOffset(), Fixture(kTrace).size());
  EXPECT_FALSE(fs::exists(work() / name));
  EXPECT_FALSE(fs::exists(root() / "4242_orcl.xml"));

  EXPECT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 1);
  EXPECT_EQ(msg_,
            "Trace parser did not find the parsed trace info! Please check if the trace file has "
            "reached max_dump_file_size.");
  Append(name, Fixture(kTrace));
  ASSERT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 0) << msg_;
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(pelicor_test::ReadTextFile(root() / "4242_orcl.xml"),
            Fixture("orcl_ora_4242.update.xml"));

  ASSERT_EQ(Validate(lookup, "4711"), 0) << msg_;
  EXPECT_EQ(service_.TraceFileName(), "4711_ora.trc");
  EXPECT_EQ(service_.StartOffset(), 4711u);
  EXPECT_EQ(StoredUdump(), SessionDir());
}

// Each failure reports the transport's message and releases the session: the next FTP call
// on the thread opens its own.
TEST_F(FtpFlowsTest, FailuresNameWhatWentWrongAndReleaseTheSession) {
  using Call = std::function<int(facade::CPelicor&, std::string*)>;
  const Call list = [&](auto& s, auto m) { return s.FtpGetTraceFileList(0, m); };
  const Call parse = [&](auto& s, auto m) { return s.FtpParseFile(kTrace, 0, 0, 2, &out_, m); };
  const Call copy = [&](auto& s, auto m) { return s.FtpGetTraceFile(kTrace, m); };
  const Call of_pid = [&](auto& s, auto m) { return s.FtpGetTraceFilePID("99", 1, &out_, m); };
  const Call list_pid = [&](auto& s, auto m) { return s.FtpGetTraceFileListPID("99", m); };
  const Call batch = [&](auto& s, auto m) { return s.FtpParseFileEx("gone.trc", 1, 0, &out_, m); };
  const Call validate = [&](auto& s, auto m) {
    return s.FtpValidation(Host().c_str(), Servers().User().c_str(), "wrong", "/lookup", "4711", m);
  };
  struct Row {
    std::string password, udump;
    Call call;
    std::string message;
  };
  const std::string good = Servers().Password();
  const Row rows[] = {
      {"wrong", "", list, kLogonFailed},
      {"wrong", "", parse, kLogonFailed},
      {good, "", validate, kLogonFailed},
      {good, "/no-such-dir", copy, kNoTraceDirectory},
      {good, "/no-such-dir", list_pid, kNoTraceDirectory},
      {good, "", parse, "FTP failed to open data stream connection!"},
      {good, "", batch, "FTP failed to open data stream connection!"},
      {good, "", copy, "FTP failed to retrieve file."},
      {good, "", of_pid, "FTP failed to get trace file for the session!"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.message);
    facade::CPelicor failing;
    ASSERT_EQ(Connect(failing, row.password, row.udump), 0);
    ASSERT_EQ(failing.SetWorkingDir(work().string().c_str(), &msg_), 0);
    EXPECT_EQ(row.call(failing, &msg_), 1);
    EXPECT_EQ(msg_, row.message);
    EXPECT_EQ(failing.Transport(), facade::kNoTransport);
    EXPECT_EQ(failing.BatchParser(), nullptr);
    EXPECT_FALSE(failing.HasFtpStream());
    EXPECT_TRUE(FtpIsFree());
  }
  EXPECT_FALSE(fs::exists(work() / kXml));
  // The failed copies left no part of the trace, under its name or a temporary one.
  for (const auto& entry : fs::directory_iterator(work())) {
    EXPECT_EQ(entry.path().extension(), ".txt") << entry.path();
  }
}

// A server that drops data and control connections half-way, without "226": the parse fails
// instead of answering "OK" with a part of the trace, in the whole-file and the batch form.
TEST_F(FtpFlowsTest, TransferCutOffWithoutItsFinalReplyFails) {
  CPelicor service;
  ASSERT_EQ(service.FtpSetConnectInfo(Servers().Address("cut_off").c_str(), "scott", "tiger",
                                      "udump", &msg_),
            0);
  ASSERT_EQ(service.SetWorkingDir(work().string().c_str(), &msg_), 0);
  EXPECT_EQ(service.FtpParseFile("ora_1.trc", 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "FTP failed to close Data connection");
  EXPECT_EQ(service.FtpParseFileEx("ora_1.trc", 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "FTP failed to close Data connection");
  EXPECT_FALSE(service.HasFtpStream());
}

// Once switched on, FTP over TLS serves every FTP method of the object, the session methods with
// their own connection data too; switched off, the object speaks plain FTP again.
TEST_F(FtpFlowsTest, TlsSwitchedOnServesEveryFtpMethod) {
  if (!transport::TlsAvailable()) {
    EXPECT_EQ(service_.SetFtpTls(1, nullptr, 0, &msg_), 1);
    EXPECT_EQ(msg_, "FTP over TLS is not available in this build (it was built without OpenSSL)");
    return;
  }
  AddTrace(Served());
  const std::string by_name = Servers().Address("proftpd_tls", "localhost");
  const std::string by_address = Servers().Address("proftpd_tls");
  const std::string user = Servers().User();
  const std::string password = Servers().Password();
  ASSERT_EQ(service_.SetFtpTls(1, Servers().Certificate().c_str(), 0, &msg_), 0);
  ASSERT_EQ(service_.FtpSetConnectInfo(by_name.c_str(), user.c_str(), password.c_str(),
                                       Udump().c_str(), &msg_),
            0);
  EXPECT_EQ(service_.FtpParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(Portion(), "select ename+update emp+commit");
  // The certificate names "localhost" only.
  EXPECT_EQ(service_.FtpValidation(by_address.c_str(), user.c_str(), password.c_str(),
                                   Udump().c_str(), "4242", &msg_),
            1);
  EXPECT_EQ(msg_, "FTP failed to secure the connection to " + by_address +
                      ": certificate verify failed: IP address mismatch");
  ASSERT_EQ(service_.SetFtpTls(0, nullptr, 0, &msg_), 0);
  EXPECT_EQ(service_.FtpGetTraceFileList(0, &msg_), 1);
  EXPECT_EQ(msg_, "FTP failed to logon: " + by_name +
                      " requires an encrypted connection (FTP over TLS), which is not switched "
                      "on! Server reply: 550 SSL/TLS required on the control channel");
}

}  // namespace
}  // namespace facade_test
