// What the parse methods answer before they read a line, and the sort options of the
// aggregated document.
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <filesystem>
#include <functional>
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class ParseFileTest : public FacadeTest {};

// Something that has a trace's name but is no regular file: a FIFO, which would block a reader
// that waited on it; Windows has none, and a folder stands in.
bool MakeNonRegularFile(const std::filesystem::path& path) {
#ifdef _WIN32
  return std::filesystem::create_directory(path);
#else
  return mkfifo(path.c_str(), 0600) == 0;
#endif
}

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
  ASSERT_TRUE(MakeNonRegularFile(root() / "fifo.trc"));
  ASSERT_TRUE(MakeNonRegularFile(udump() / "fifo.trc"));
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + row.message);
    facade::CPelicor fresh;
    ASSERT_EQ(fresh.SetWorkingDir(work().string().c_str(), &msg_), 0);
    ASSERT_EQ(fresh.NfsSetConnectInfo(udump().string().c_str(), &msg_), 0);
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

// The call document alone is written while the trace is read; it holds what the document written
// after the parse holds (merging keeps every statement to the end, with nothing to merge here).
// A document that cannot be made fails only once the whole trace was read, so a trace that
// reached its size limit says so first; a parse that fails leaves no document.
TEST_F(ParseFileTest, CallDocumentWrittenWhileTheTraceIsRead) {
  AddTrace(root());
  ASSERT_EQ(service_.ParseFile(kTrace, 0, 1, 0, &out_, &msg_), 0);
  const std::string kept = ReadWholeFile(work() / kXml);
  ASSERT_EQ(service_.ParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(work() / kXml), kept);

  fs::remove(work() / kXml);
  fs::create_directory(work() / kXml);
  EXPECT_EQ(service_.ParseFile(kTrace, 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace parser failed to create output XML file!");
  // Its statements close half-way (the second copy reuses their cursors), then the limit.
  AppendFile(root() / kTrace,
             Fixture(kTrace) + "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n");
  EXPECT_EQ(service_.ParseFile(kTrace, 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace file has reached max_dump_file_size!");
  fs::remove(work() / kXml);
  EXPECT_EQ(service_.ParseFile(kTrace, 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace file has reached max_dump_file_size!");
  EXPECT_TRUE(fs::is_empty(work()));
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
