// What the parse methods answer before they read a line, and the sort options of the
// aggregated document.
#include <sys/stat.h>

#include <functional>
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class ParseFileTest : public FacadeTest {};

// A name without ".trc" fails every parse method before anything is read or written; a later
// failure leaves the XML name in place. A FIFO is no trace: refused at once, not waited on. No
// FTP settings are stored here.
TEST_F(ParseFileTest, FailuresBeforeAndAfterTheXmlName) {
  using Call = std::function<int(facade::CPelicor&, const char*, std::string*)>;
  const Call parse = [&](auto& s, auto n, auto o) { return s.ParseFile(n, 0, 0, 2, o, &msg_); };
  const Call nfs = [&](auto& s, auto n, auto o) { return s.NfsParseFile(n, 0, 0, 2, o, &msg_); };
  const Call ftp = [&](auto& s, auto n, auto o) { return s.FtpParseFile(n, 0, 0, 2, o, &msg_); };
  const Call parse_ex = [&](auto& s, auto n, auto o) { return s.ParseFileEx(n, 1, 0, o, &msg_); };
  const Call nfs_ex = [&](auto& s, auto n, auto o) { return s.NfsParseFileEx(n, 1, 0, o, &msg_); };
  const Call ftp_ex = [&](auto& s, auto n, auto o) { return s.FtpParseFileEx(n, 1, 0, o, &msg_); };
  const char* no_trc = "Filename does not contain '.trc' !";
  const char* no_file = "Trace parser failed to open parse file!";
  const char* no_batch_file = "Trace parser failed to open parse file.";
  const char* no_ftp = "hostname/username/password/udump, one of them is empty!";
  struct Row {
    const Call& call;
    const char* name;
    const char* out;
    const char* message;
  };
  const Row rows[] = {
      {parse, "trace.log", "", no_trc},
      {nfs, "trace.log", "", no_trc},
      {ftp, "trace.log", "", no_trc},
      {parse_ex, "trace.log", "", no_trc},
      {nfs_ex, "trace.log", "", no_trc},
      {ftp_ex, "trace.log", "", no_trc},
      {parse, "gone.trc", "gone.xml", no_file},
      {nfs, "gone.trc", "gone.xml", no_file},
      {parse_ex, "gone.trc", "gone.xml", no_batch_file},
      {nfs_ex, "gone.trc", "gone.xml", no_batch_file},
      {parse, "fifo.trc", "fifo.xml", no_file},
      {nfs, "fifo.trc", "fifo.xml", no_file},
      {parse_ex, "fifo.trc", "fifo.xml", no_batch_file},
      {nfs_ex, "fifo.trc", "fifo.xml", no_batch_file},
      {ftp, kTrace, kXml, no_ftp},
      {ftp_ex, kTrace, kXml, no_ftp},
  };
  AddTrace(root(), "trace.log");
  AddTrace(udump(), "trace.log");
  ASSERT_EQ(mkfifo((root() / "fifo.trc").c_str(), 0600), 0);
  ASSERT_EQ(mkfifo((udump() / "fifo.trc").c_str(), 0600), 0);
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + row.message);
    facade::CPelicor fresh;
    ASSERT_EQ(fresh.SetWorkingDir(work().c_str(), &msg_), 0);
    ASSERT_EQ(fresh.NfsSetConnectInfo(udump().c_str(), &msg_), 0);
    std::string out = "stale";
    EXPECT_EQ(row.call(fresh, row.name, &out), 1);
    EXPECT_EQ(msg_, row.message);
    EXPECT_EQ(out, row.out);
  }
  // The copy of the share fails silently, as it always has, and leaves nothing.
  EXPECT_EQ(service_.NfsGetTraceFile("fifo.trc", &msg_), 0);
  EXPECT_TRUE(fs::is_empty(work()));
  EXPECT_FALSE(fs::exists(root() / "trace.xml"));
}

// Sorted on execute cpu the update (0.02 s) comes before the select (0.00 s); the replaced
// options no longer count.
TEST_F(ParseFileTest, AggregatedDocumentFollowsTheLastSortOptions) {
  AddTrace(root());
  ASSERT_EQ(service_.SetSortOption(1, 0, 1, 2, &msg_), 0);
  ASSERT_EQ(service_.SetSortOption(0, 1, 0, 1, &msg_), 0);
  ASSERT_EQ(service_.ParseFile(kTrace, 0, 1, 1, &out_, &msg_), 0);
  const std::string document = ReadWholeFile(root() / kXml);
  EXPECT_LT(document.find("update emp"), document.find("select ename"));
}

}  // namespace
}  // namespace facade_test
