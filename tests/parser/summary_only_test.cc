// Generated traces in both layouts: the aggregated documents and the report of a summary-only
// parse, and of a parse whose file is split and scanned ahead by worker threads, are the bytes
// of the full parse's, and those bytes keep their checksums (a change that alters a single figure
// anywhere in them shows here); the call document written while the trace is read is the one
// written after it, also when read ahead.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/output_sink.h"
#include "parser/text_report.h"
#include "parser/trace_parser.h"
#include "parser_fixture.h"
#include "support/exceptions.h"
#include "trace_generator.h"

namespace {

struct Documents {
  std::string tkprof;
  std::string sorted;
  std::string report;
};

// Chunks small enough to put chunk ends inside SQL texts and BINDS blocks many times over.
parser::CTraceParser::ReadAhead Workers(unsigned workers) {
  return {workers, 64 * 1024, 0};
}

// Parses `path` and writes every document that needs no call record, into strings, in the
// order the grand totals make matter.
Documents Write(const std::string& path, bool summary_only, const parser::SortOptions* sort,
                bool merge, unsigned workers = 0) {
  parser::CTraceParser trace(sort, merge);
  trace.SetReadAhead(Workers(workers));
  trace.SetSummaryOnly(summary_only);
  trace.SetStatementId("from");  // matches many statements: the sorted writer counts them
  trace.Parse(path, 0);
  trace.SortClosedStatements();
  const parser::DocumentContext context = trace.MakeDocumentContext();
  std::ostringstream tkprof;
  std::ostringstream sorted;
  std::ostringstream report;
  {
    parser::OutputSink out(tkprof);
    parser::WriteTkprofXml(trace.ClosedStatements(), context, out);
  }
  {
    parser::OutputSink out(sorted);
    parser::WriteSortedXml(trace.ClosedStatements(), context, out);
  }
  parser::WriteTextReport(trace.ClosedStatements(), context, report);
  return {tkprof.str(), sorted.str(), report.str()};
}

// FNV-1a, 64 bits.
std::uint64_t Checksum(const std::string& bytes) {
  std::uint64_t hash = 0xcbf29ce484222325ULL;
  for (const char c : bytes) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 0x100000001b3ULL;
  }
  return hash;
}

TEST(SummaryOnly, GeneratedTracesGiveTheDocumentsOfTheFullParse) {
  struct Case {
    tracegen::TraceFormat format;
    bool merge;
    bool sort;
    std::uint64_t tkprof;  // checksums of the full parse's documents
    std::uint64_t sorted;
    std::uint64_t report;
  };
  const Case cases[] = {
      {tracegen::TraceFormat::kOracle9i, false, false, 8653359575625012162ULL,
       3834413563784456323ULL, 3824270260362381823ULL},
      {tracegen::TraceFormat::kOracle9i, true, true, 14023310375566998588ULL,
       18102711800965828364ULL, 8699337953765032100ULL},
      {tracegen::TraceFormat::kOracle19c, false, true, 11216933521575928268ULL,
       4414460333417459870ULL, 18050820368847630241ULL},
      {tracegen::TraceFormat::kOracle19c, true, false, 2740542814842682451ULL,
       15958165097124922737ULL, 8576862232818911183ULL},
  };
  const parser::SortOptions sort(true, true, true, 3);
  for (const Case& test : cases) {
    SCOPED_TRACE(std::to_string(static_cast<int>(test.format)) + " merge " +
                 std::to_string(test.merge) + " sort " + std::to_string(test.sort));
    tracegen::GeneratorOptions options;
    options.format = test.format;
    options.target_bytes = 2 << 20;
    options.process_line_every = 500;
    const TempFile file("");
    ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, nullptr));
    const parser::SortOptions* sort_options = test.sort ? &sort : nullptr;
    const Documents full = Write(file.path(), false, sort_options, test.merge);
    for (const unsigned workers : {0u, 2u}) {
      const Documents summary = Write(file.path(), true, sort_options, test.merge, workers);
      EXPECT_EQ(summary.tkprof, full.tkprof);
      EXPECT_EQ(summary.sorted, full.sorted);
      EXPECT_EQ(summary.report, full.report);
    }
    EXPECT_EQ(Checksum(full.tkprof), test.tkprof);
    EXPECT_EQ(Checksum(full.sorted), test.sorted);
    EXPECT_EQ(Checksum(full.report), test.report);
  }
}

// The report of a summary-only parse that reads `path` with `workers` (chunks of 512 bytes), or
// the message it failed with.
std::string ReportOrFailure(const std::string& path, unsigned workers) {
  parser::CTraceParser trace;
  trace.SetReadAhead({workers, 512, 0});
  trace.SetSummaryOnly(true);
  try {
    trace.Parse(path, 0);
  } catch (const exceptions::ExceptionBase& failure) {
    return failure.Message();
  }
  std::ostringstream report;
  parser::WriteTextReport(trace.ClosedStatements(), trace.MakeDocumentContext(), report);
  return report.str();
}

// BINDS blocks that a summary-only parse steps over unread when the workers have measured them:
// the line that ends each one is read as before, whatever kind it is and wherever the chunks end.
TEST(SummaryOnly, BindBlocksSteppedOverGiveTheSameReport) {
  const std::string bind =
      " bind 0: dty=2 mxl=22(22) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0\n"
      "   bfp=0a4f1c08 bln=22 avl=02 flg=05\n"
      "   value=59\n";
  const std::string exec = "EXEC #1:c=10000,e=174,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=9\n";
  const std::string blocks[] = {
      bind + bind + exec,
      " bind 0: (No oacdef for this bind)\n" + bind + exec,
      " bind 0: dty=2 mxl=22(22)\n   value=5\n" + exec,                       // no buffer line
      " bind 0: dty=2 mxl=22(22)\n   bfp=0a4f1c08\n" + exec,                  // no value line
      bind + "FETCH #1:c=1,e=2,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=4,tim=10\n",  // lost, as always
      bind + "WAIT #1: nam='x' bind ela= 5 p1=0 p2=0 p3=0\n" + exec,
      " bind 0: dty=2 mxl=22(22)\n   bfp=*** our file\n   value=5\n" + exec,  // a size limit
      "\n Bind#0\n  oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00\n  value=7\n" + exec,
  };
  for (const std::string& block : blocks) {
    std::string text = "Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n" +
                       CursorBlock(1, "select 1 from dual");
    // Here and there, at other places of the chunks; the last lines, which the parser's own
    // thread reads, have none.
    for (int i = 0; i < 40; ++i)
      text += "BINDS #1:\n" + (i % 7 == 3 && i < 30 ? block : bind + exec);
    const TempFile file(text);
    EXPECT_EQ(ReportOrFailure(file.path(), 2), ReportOrFailure(file.path(), 0)) << block;
  }
}

// The call document of statements handed over while the trace is read, against the one of the
// whole closed list.
std::string StreamedCallDocument(const std::string& path, std::uint8_t flags,
                                 std::size_t* handed_over, unsigned workers = 0) {
  parser::CTraceParser trace;
  trace.SetReadAhead(Workers(workers));
  std::ostringstream text;
  parser::OutputSink out(text);
  bool started = false;
  parser::DocumentContext context;
  const auto write = [&](const parser::TraceStatement& statement) {
    if (!started) {
      context = trace.MakeDocumentContext();
      parser::WriteCallXmlStart(out, context);
      started = true;
    }
    parser::WriteCallXmlStatement(out, statement, context);
  };
  trace.SetClosedStatementHandler([&](std::unique_ptr<parser::TraceStatement>& statement) {
    ++*handed_over;
    write(*statement);
    return true;
  });
  trace.ParseFrom(path, 0, flags);
  for (const auto& statement : trace.ClosedStatements()) write(*statement);
  if (!started) parser::WriteCallXmlStart(out, trace.MakeDocumentContext());
  parser::WriteCallXmlEnd(out);
  out.Close();
  return text.str();
}

std::string WholeCallDocument(const std::string& path, std::uint8_t flags) {
  parser::CTraceParser trace;
  trace.SetReadAhead(Workers(0));
  trace.ParseFrom(path, 0, flags);
  std::ostringstream text;
  parser::OutputSink out(text);
  parser::WriteCallXml(trace.ClosedStatements(), trace.MakeDocumentContext(), out);
  out.Close();
  return text.str();
}

TEST(StreamedCalls, StatementsHandedOverWhileReadingGiveTheWholeDocument) {
  for (const auto format : {tracegen::TraceFormat::kOracle9i, tracegen::TraceFormat::kOracle19c}) {
    for (const int flags : {0, parser::kSkipWaits | parser::kTopLevelOnly}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(format)) + " flags " + std::to_string(flags));
      tracegen::GeneratorOptions options;
      options.format = format;
      options.target_bytes = 2 << 20;
      options.process_line_every = 40;
      const TempFile file("");
      ASSERT_TRUE(tracegen::WriteTraceFile(file.path(), options, nullptr));
      const auto bits = static_cast<std::uint8_t>(flags);
      const std::string whole = WholeCallDocument(file.path(), bits);
      for (const unsigned workers : {0u, 3u}) {
        std::size_t handed_over = 0;
        EXPECT_EQ(StreamedCallDocument(file.path(), bits, &handed_over, workers), whole);
        EXPECT_GT(handed_over, 80u);  // of about 100 to 200 statements
      }
    }
  }
}

// Statements closed before the session timestamp or the first cursor time is known are kept
// until both are: the document's start reads them.
TEST(StreamedCalls, StatementsWaitForTheFiguresOfTheDocumentsStart) {
  const std::string error =
      "PARSE ERROR #3:len=17 dep=0 uid=5 oct=3 lid=5 tim=77 err=942\n"
      "select * from nx\n";
  const std::string session = "*** SESSION ID:(9.1407) 2004-05-07 11:20:17.631\n";
  const std::string texts[] = {
      error + error + session + CursorBlock(3, "select 1 from dual", 4242) + error,
      CursorBlock(1, "select 1 from dual") + CursorBlock(1, "select 2 from dual") + session +
          CursorBlock(1, "select 3 from dual") + CursorBlock(2, "select 4 from dual"),
      CursorBlock(1, "select 1 from dual") + CursorBlock(1, "select 2 from dual"),
  };
  for (const std::string& text : texts) {
    const TempFile file(text);
    std::size_t handed_over = 0;
    EXPECT_EQ(StreamedCallDocument(file.path(), 0, &handed_over), WholeCallDocument(file.path(), 0))
        << text;
  }
}

}  // namespace
