// The FTP methods of one call against proftpd: listings, copies, the trace file of a server
// process, the whole-file parse, and the messages of what goes wrong.
#include <functional>
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

constexpr const char* kListing = "FtpTraceFileList.txt";

TEST_F(FtpFlowsTest, ListsTheTraceFilesOfTheDirectory) {
  for (const char* name : {"a.trc", "x_55.trc", "55_ora.trc", "notes.txt"})
    WriteWholeFile(Served() / name, name);
  ASSERT_EQ(service_.FtpGetTraceFileList(0, &msg_), 0) << msg_;
  std::string names = ReadWholeFile(work() / kListing);  // in the server's order
  for (const char* name : {"55_ora.trc\r\n", "a.trc\r\n", "x_55.trc\r\n"}) {
    EXPECT_NE(names.find(name), std::string::npos) << name;
  }
  EXPECT_EQ(names.size(), 29u);
  ASSERT_EQ(service_.FtpGetTraceFileList(1, &msg_), 0) << msg_;
  const std::string long_form = ReadWholeFile(work() / kListing);
  EXPECT_EQ(long_form.rfind("-rw", 0), 0u) << long_form;
  EXPECT_NE(long_form.find(" 10 "), std::string::npos);  // 55_ora.trc's size
  EXPECT_EQ(long_form.find("notes.txt"), std::string::npos);

  // The names that end in the process id, in the long form.
  ASSERT_EQ(service_.FtpGetTraceFileListPID("55", &msg_), 0) << msg_;
  const std::string of_pid = ReadWholeFile(work() / kListing);
  EXPECT_NE(of_pid.find(" x_55.trc\r\n"), std::string::npos) << of_pid;
  EXPECT_EQ(of_pid.find("55_ora.trc"), std::string::npos);

  fs::remove(work() / kListing);
  EXPECT_EQ(service_.FtpGetTraceFileList(2, &msg_), 0);
  EXPECT_FALSE(fs::exists(work() / kListing));
}

TEST_F(FtpFlowsTest, CopiesATraceFileIntoTheWorkingDirectory) {
  WriteWholeFile(Served() / kTrace, Fixture(kTrace));
  ASSERT_EQ(service_.FtpGetTraceFile(kTrace, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / kTrace), AsciiCopy(Fixture(kTrace)));
}

// The lookup's size is where the session's new lines start: a later parse reads only those.
TEST_F(FtpFlowsTest, TraceFileOfAProcessSetsTheStartOffset) {
  const std::string name = "4242_orcl.trc";
  WriteWholeFile(Served() / name, Fixture(kTrace));
  ASSERT_EQ(service_.FtpGetTraceFilePID("4242", 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(out_, name);
  EXPECT_EQ(service_.TraceFileName(), name);
  EXPECT_EQ(service_.StartOffset(), Fixture(kTrace).size());
  EXPECT_FALSE(fs::exists(work() / name));

  AppendFile(Served() / name, Fixture(kTrace));
  ASSERT_EQ(service_.FtpGetTraceFilePID("4242", 1, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / name), AsciiCopy(Fixture(kTrace) + Fixture(kTrace)));
  EXPECT_EQ(service_.StartOffset(), 2 * Fixture(kTrace).size());

  AppendFile(Served() / name, Fixture(kTrace));
  ASSERT_EQ(service_.FtpParseFile(name.c_str(), 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / "4242_orcl.xml"), Fixture("orcl_ora_4242.calls.xml"));
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
  struct Row {
    std::string password, udump;
    Call call;
    std::string message;
  };
  const std::string good = Servers().Password();
  const Row rows[] = {
      {"wrong", "", list, kLogonFailed},
      {"wrong", "", parse, kLogonFailed},
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
    ASSERT_EQ(failing.SetWorkingDir(work().c_str(), &msg_), 0);
    EXPECT_EQ(row.call(failing, &msg_), 1);
    EXPECT_EQ(msg_, row.message);
    EXPECT_EQ(failing.BatchParser(), nullptr);
    EXPECT_FALSE(failing.HasFtpStream());
    EXPECT_TRUE(FtpIsFree());
  }
  EXPECT_FALSE(fs::exists(work() / kXml));
}

}  // namespace
}  // namespace facade_test
