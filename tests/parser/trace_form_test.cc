// How the parser settles what kind of trace it reads: the banner in the head of a file parsed
// from an offset, the clock of a trace without one, a banner of 8i/9i that later lines cannot
// overturn, the size-limit line of each form; and signed cursor numbers and the end of a batch
// parse without a limit.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "../support/raised.h"
#include "parser/call_xml_writer.h"
#include "parser/record_scanners.h"
#include "parser/trace_parser.h"
#include "parser_fixture.h"

namespace {

using pelicor_test::Raised;

constexpr const char* k9iBanner = "Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n";
constexpr const char* k8iBanner = "Oracle8i Enterprise Edition Release 8.1.7.4.0 - Production\n";
constexpr const char* k19cBanner =
    "Oracle Database 19c Enterprise Edition Release 19.0.0.0.0 - Production\nVersion "
    "19.14.2.0.0\n";

std::string Exec(int cursor, std::int64_t c, std::int64_t tim, int dep = 0) {
  return "EXEC #" + std::to_string(cursor) + ":c=" + std::to_string(c) + ",e=" + std::to_string(c) +
         ",p=0,cr=0,cu=0,mis=0,r=0,dep=" + std::to_string(dep) +
         ",og=4,tim=" + std::to_string(tim) + "\n";
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0, end; start < text.size(); start = end + 1) {
    end = text.find('\n', start);
    lines.push_back(text.substr(start, end - start + 1));
  }
  return lines;
}

// A line source that can hand out the head of its trace, as the FTP transport does.
class HeadLineSource : public StringLineSource {
 public:
  HeadLineSource(std::string head, std::vector<std::string> lines)
      : StringLineSource(std::move(lines)), head_(std::move(head)) {}
  bool ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) override {
    head_name = name;
    head_max = max_bytes;
    *head = head_.substr(0, static_cast<std::size_t>(max_bytes));
    return true;
  }
  std::string head_name;
  std::uint64_t head_max = 0;

 private:
  std::string head_;
};

// The head before the offset tells the release; with no banner there, the size of tim does
// (for the aggregated writers only: the parser's own divisor stays 100 without a banner).
TEST(TraceForm, BannerComesFromTheHeadOfATraceParsedFromAnOffset) {
  const std::string header_end = "*** 2004-05-07 11:20:17.632\n";
  const struct {
    std::string head;
    std::int64_t tim;
    std::int64_t divisor;
    int writers_major;
    bool newer;
  } cases[] = {
      {std::string("/u01/udump/orcl_ora_4242.trc\n") + k9iBanner, 1083929217642431, 1000000, 9,
       false},
      {k8iBanner, 1083929217642431, 100, 8, false},
      {k19cBanner, 5793511830834, 1000000, 19, true},
      {"Unix process pid: 4242\n", 1083929217642431, 100, 9, false},    // no banner: 16 digits
      {"Unix process pid: 4242\n", 999999999999, 100, 0, false},        // 12 digits: centiseconds
      {header_end + k9iBanner, 1083929217642431, 100, 9, false},        // past the header
      {std::string(k9iBanner).substr(0, 30), 35667325, 100, 0, false},  // a cut line is no line
  };
  for (const auto& test : cases) {
    const std::string tail = CursorBlock(1, "select 1 from dual", test.tim) + Exec(1, 5, test.tim);
    const TempFile file(test.head + tail);
    parser::CTraceParser trace;
    trace.Parse(file.path(), test.head.size());
    SCOPED_TRACE(test.head);
    EXPECT_EQ(trace.TimeDivisor(), test.divisor);
    EXPECT_EQ(trace.MajorVersionForWriters(), test.writers_major);
    EXPECT_EQ(trace.NewerForms(), test.newer);
    EXPECT_EQ(SqlTexts(trace.ClosedStatements()), std::vector<std::string>{"select 1 from dual\n"});

    // A stream asks its source for the head before it opens at the offset.
    HeadLineSource source(test.head + tail, Lines(tail));
    parser::CTraceParser streamed;
    streamed.ParseStream(source, "orcl_ora_4242.trc", test.head.size());
    EXPECT_EQ(source.head_name, "orcl_ora_4242.trc");
    EXPECT_EQ(source.head_max, test.head.size());
    EXPECT_EQ(source.opened_name, "orcl_ora_4242.trc");
    EXPECT_EQ(source.opened_offset, test.head.size());
    EXPECT_EQ(source.closes, 1);
    ASSERT_EQ(streamed.ClosedStatements().size(), 1u);
    EXPECT_EQ(streamed.ClosedStatements().front()->exec_calls.size(), 1u);
    EXPECT_EQ(streamed.TimeDivisor(), test.divisor);
    EXPECT_EQ(streamed.MajorVersionForWriters(), test.writers_major);
  }
  // From the start the head is the stream itself: the source is not asked.
  HeadLineSource source(k9iBanner, {k9iBanner});
  parser::CTraceParser trace;
  trace.ParseStream(source, "t.trc", 0);
  EXPECT_EQ(source.head_name, "");
  EXPECT_EQ(trace.TimeDivisor(), 1000000);
}

// The banner or the line forms tell the release and the clock. After an 8i/9i banner no line
// makes the trace a 10g+ one: the divisor stays, and a call keeps the figures of the recursive
// calls beneath it (10g+ traces count each call without them).
TEST(TraceForm, BannerOrLineFormsTellTheReleaseAndOlderBannersSettleIt) {
  const std::string statements =
      CursorBlock(1, "select 1 from dual") +
      "PARSING IN CURSOR #2 len=18 dep=1 uid=0 oct=3 lid=0 tim=1 hv=2 ad='6c'\n"
      "select 2 from dual\nEND OF STMT\n" +
      Exec(2, 1000, 1083929217641000, 1) + Exec(1, 3000, 1083929217642431);
  const struct {
    std::string banner;
    std::string later;  // a line behind the banner that names another release
    bool newer;
    std::int64_t divisor;
    int major;
    double exec_cpu;  // what the top-level EXEC adds to its statement's totals
  } cases[] = {
      {k9iBanner, "Version 5.1 Service Pack 2\n", false, 1000000, 9, 3000},
      {k8iBanner, "Oracle Database 10g Release 10.2.0.1.0 - Production\n", false, 100, 8, 3000},
      {k9iBanner, "Oracle Database 19c Enterprise Edition Release 19.0.0.0.0\n", false, 1000000, 9,
       3000},
      {"", "Version 10.2.0.1.0\n", true, 1000000, 10, 2000},  // no banner: the line is believed
      {"", "EXEC #9:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=0,tim=5793511830834\n", true,
       1000000, parser::CTraceParser::kNewerFormsVersion, 2000},
      {k19cBanner, "", true, 1000000, 19, 2000},
      {"Oracle Database 11g Enterprise Edition Release 11.1.0.6.0 - 64bit Production\n", "", true,
       1000000, 11, 2000},
      {"Oracle10g Release 10.1.0.2.0\n", "", false, 100, 10, 3000},
      {"Oracle7 Server Release 7.3.4.0.0 - Production\n", "", false, 100, 7, 3000},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.banner + test.later);
    const auto trace = ParseText(test.banner + test.later + statements);
    EXPECT_EQ(trace->NewerForms(), test.newer);
    EXPECT_EQ(trace->TimeDivisor(), test.divisor);
    EXPECT_EQ(trace->BannerMajorVersion(), test.major);
    EXPECT_EQ(trace->MajorVersionForWriters(), test.major);
    ASSERT_EQ(trace->ClosedStatements().size(), 2u);
    EXPECT_EQ(trace->ClosedStatements().front()->totals[parser::kExecTotals].cpu, test.exec_cpu);
    EXPECT_EQ(trace->ClosedStatements().back()->totals[parser::kExecTotals].cpu, 1000);
  }
}

// Signed numbers scan as %d scans them, cursor numbers included; a negative cursor prints with
// its sign, a plus sign is dropped.
TEST(TraceForm, CursorNumbersTakeASign) {
  const struct {
    const char* cursor_line;
    const char* call_line;
    const char* printed;
    std::size_t fetches;
  } cases[] = {
      {"PARSING IN CURSOR #-1 len=8 dep=0 uid=5 oct=3 lid=5 tim=7 hv=1 ad='6b'\n",
       "FETCH #-1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=8\n", "-1", 1},
      {"PARSING IN CURSOR #+1 len=8 dep=0 uid=5 oct=3 lid=5 tim=7 hv=1 ad='6b'\n",
       "FETCH #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=8\n", "1", 1},
      {"PARSING IN CURSOR #-2147483648 len=8 dep=0 uid=5 oct=3 lid=5 tim=7 hv=1 ad='6b'\n",
       "FETCH #-2147483648:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=8\n", "-2147483648", 1},
      {"PARSING IN CURSOR #-1 len=8 dep=0 uid=5 oct=3 lid=5 tim=7 hv=1 ad='6b'\n",
       "FETCH #18446744073709551615:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=8\n", "-1", 1},
      {"PARSING IN CURSOR #-1 len=8 dep=0 uid=5 oct=3 lid=5 tim=7 hv=1 ad='6b'\n",
       "FETCH #1:c=0,e=1,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=8\n", "-1", 0},
  };
  for (const auto& test : cases) {
    const auto trace = ParseText(std::string(test.cursor_line) + "select 1\n" + test.call_line);
    SCOPED_TRACE(test.cursor_line + std::string(test.call_line));
    ASSERT_EQ(trace->ClosedStatements().size(), 1u);
    const parser::TraceStatement& statement = *trace->ClosedStatements().front();
    EXPECT_EQ(statement.fetch_calls.size(), test.fetches);
    EXPECT_EQ(statement.header.len, 8);  // the scan went on behind the cursor
    std::ostringstream document;
    parser::OutputSink sink(document, parser::LineEnds::kAsWritten);
    parser::WriteCallXml(trace->ClosedStatements(), trace->MakeDocumentContext(), sink);
    ASSERT_TRUE(sink.Close());
    const std::string printed = test.printed;
    const std::string fetch_rows =
        test.fetches == 0 ? ""
                          : "<FETCH>\n<FETCHDATA c=\"0\" e=\"1\" p=\"0\" cr=\"0\" cu=\"0\" "
                            "mis=\"0\" r=\"1\" dep=\"0\" og=\"4\" tim=\"8\"></FETCHDATA>\n"
                            "</FETCH>\n";
    EXPECT_EQ(document.str(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><STATEMENTS tim=\"\" "
              "FirstParseInCursorTim=\"7\">\n<STATEMENT>\n<CURSORNO cursor=\"" +
                  printed +
                  "\"></CURSORNO>\n<SQL><![CDATA[select 1\n]]></SQL><PARSEINCURSOR "
                  "cursor=\"" +
                  printed +
                  "\" len=\"8\" dep=\"0\" uid=\"5\" oct=\"3\" lid=\"5\" tim=\"7\" hv=\"1\" "
                  "ad=\"6b\"></PARSEINCURSOR>\n" +
                  fetch_rows + "</STATEMENT>\n</STATEMENTS>\n");
  }
  parser::ParseErrorRecord error;
  parser::ScanParseErrorLine("PARSE ERROR #-3:len=9 dep=0 uid=5 oct=3 lid=5 tim=1 err=942", &error);
  EXPECT_EQ(static_cast<std::int64_t>(error.cursor), -3);
  EXPECT_TRUE(error.cursor_negative);
  EXPECT_EQ(error.len, 9);
}

// A batch parse without a limit ends: at the end of the input every statement is closed and the
// answer is that nothing remains; with a limit they come a portion at a time, each batch going
// on where the last one stopped, from a file and from a stream alike.
TEST(TraceForm, BatchesComeAPortionAtATimeAndCloseEverythingAtTheEnd) {
  const std::string text =
      CursorBlock(1, "select a") + CursorBlock(2, "select b") + CursorBlock(3, "select c");
  const std::vector<std::string> lines = Lines(text);
  const auto texts = [](const parser::CTraceParser& trace) {
    std::string joined;
    for (const std::string& sql : SqlTexts(trace.ClosedStatements())) joined += sql;
    return joined;
  };
  const struct {
    std::uint16_t limit;
    std::vector<bool> answers;
    std::vector<std::string> closed;  // after each call, the closed list being emptied between
  } cases[] = {
      {0, {false, false}, {"select a\nselect b\nselect c\n", ""}},
      {1, {true, true, false, false}, {"select a\n", "select b\n", "select c\n", ""}},
      {2, {true, false}, {"select a\nselect b\n", "select c\n"}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.limit);
    const TempFile file(text);
    parser::CTraceParser from_file;
    StringLineSource source(lines);
    parser::CTraceParser from_stream;
    for (std::size_t call = 0; call < test.answers.size(); ++call) {
      EXPECT_EQ(from_file.ParseBatch(file.path(), test.limit, 0), test.answers[call]) << call;
      EXPECT_EQ(from_stream.ParseStreamBatch(source, "t.trc", test.limit, 0), test.answers[call]);
      EXPECT_EQ(texts(from_file), test.closed[call]) << call;
      EXPECT_EQ(texts(from_stream), test.closed[call]) << call;
      from_file.ClearClosedStatements();
      from_stream.ClearClosedStatements();
    }
    EXPECT_TRUE(from_file.OpenStatements().empty());
    EXPECT_EQ(source.opened_name, "");  // the caller opens and closes a batch stream
    EXPECT_EQ(source.closes, 0);
  }
}

// 10g+ header lines hold "file" innocently; only Oracle's own marker ends such a trace. In an
// 8i/9i trace every line with "***" and "file"/"FILE" does.
TEST(TraceForm, SizeLimitLineOfEachForm) {
  const std::string limit = "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n";
  const struct {
    std::string banner;
    std::string line;
    bool raises;
  } cases[] = {
      {k19cBanner, "*** MODULE NAME:(ProfileService) 2022-10-25T15:07:20.941104+02:00\n", false},
      {k19cBanner, "*** SERVICE NAME:(filestore) 2022-10-25T15:07:20.941104+02:00\n", false},
      {k19cBanner, "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES *** x\n", false},
      {k19cBanner, limit, true},
      {k19cBanner, "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\r\n", true},
      {"", "EXEC #1:c=1,e=1,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=0,tim=5\n*** file\n", false},
      {k9iBanner, "*** MODULE NAME:(ProfileService) 2004-05-07 11:20:17.631\n", true},
      {k9iBanner, limit, true},
      {k8iBanner, "*** SERVICE NAME:(filestore) 2004-05-07 11:20:17.631\n", true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.banner + test.line);
    const TempFile file(test.banner + CursorBlock(1, "select 1 from dual") + test.line +
                        CursorBlock(2, "select 2 from dual"));
    parser::CTraceParser trace;
    const std::string raised = Raised([&] { trace.Parse(file.path(), 0); });
    EXPECT_EQ(raised, test.raises ? "TraceParser|CTraceParser::Parse|Parse|Trace file has "
                                    "reached max_dump_file_size!"
                                  : "");
    EXPECT_EQ(trace.ClosedStatements().size() + trace.OpenStatements().size(),
              test.raises ? 1u : 2u);
  }
}

}  // namespace
