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
#include "parser/streamed_call_document.h"
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

// A generated trace of about 2 MB in `file`, with a new trace section (which closes every
// statement) after every `section_statements` statements.
bool WriteGeneratedTrace(const TempFile& file, tracegen::TraceFormat format,
                         int section_statements) {
  tracegen::GeneratorOptions options;
  options.format = format;
  options.target_bytes = 2 << 20;
  options.process_line_every = section_statements;
  return tracegen::WriteTraceFile(file.path(), options, nullptr);
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
    const TempFile file("");
    ASSERT_TRUE(WriteGeneratedTrace(file, test.format, 500));
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

// The aggregated document and the report of a parse's closed statements.
std::string AggregatedDocuments(parser::CTraceParser& trace) {
  std::ostringstream documents;
  {
    parser::OutputSink out(documents);
    parser::WriteTkprofXml(trace.ClosedStatements(), trace.MakeDocumentContext(), out);
  }
  parser::WriteTextReport(trace.ClosedStatements(), trace.MakeDocumentContext(), documents);
  return documents.str();
}

// The aggregated document and the report of a summary-only parse that reads `path` with
// `workers` (chunks of 512 bytes), or the message it failed with.
std::string DocumentsOrFailure(const std::string& path, unsigned workers, std::uint8_t flags = 0) {
  parser::CTraceParser trace;
  trace.SetReadAhead({workers, 512, 0});
  trace.SetSummaryOnly(true);
  try {
    trace.ParseFrom(path, 0, flags);
  } catch (const exceptions::ExceptionBase& failure) {
    return failure.Message();
  }
  return AggregatedDocuments(trace);
}

// `block` behind the BINDS line at `at` (or every seventh from there) of a trace that starts
// with `head`, `usual_block` behind the others; the last lines, which the parser's own thread
// reads, have none.
std::string TraceOfBlocks(const std::string& head, const std::string& block,
                          const std::string& usual_block, int at, bool repeated) {
  std::string text = head + CursorBlock(1, "select 1 from dual");
  for (int i = 0; i < 40; ++i) {
    const bool here = i < 30 && (i == at || (repeated && i % 7 == at % 7));
    text += "BINDS #1:\n" + (here ? block : usual_block);
  }
  return text;
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
    const TempFile file(
        TraceOfBlocks("Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n", block,
                      bind + exec, 3, true));
    EXPECT_EQ(DocumentsOrFailure(file.path(), 2), DocumentsOrFailure(file.path(), 0)) << block;
  }
}

// The same for blocks in the 10g+ layout, whose end is handed back to the dispatcher: the first
// line that is a record ends them, and a " Bind#" line in them tells a trace without banner and
// plan hashes that it counts in microseconds.
TEST(SummaryOnly, NewerBindBlocksSteppedOverGiveTheSameDocuments) {
  const std::string bind =
      " Bind#0\n"
      "  oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00\n"
      "  oacflg=03 fl2=1000000 frm=01 csi=873 siz=24 off=0\n"
      "  kxsbbbfp=7fe9c3cf3450  bln=22  avl=06  flg=05\n"
      "  value=111242892\n";
  const std::string wait =
      "WAIT #1: nam='db file sequential read' ela= 1200 file#=4 block#=1234 blocks=1 obj#=75 "
      "tim=900100\n";
  const std::string stat =
      "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='FAST DUAL  (cr=0 pr=0 pw=0 time=1 us)'\n";
  struct Layout {
    std::string head;
    std::string exec;
    std::string usual_block;
  };
  const std::string newer_exec =
      "EXEC #1:c=73000,e=90000,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=0,tim=900000\n";
  const std::string older_exec =
      "EXEC #1:c=73000,e=90000,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,tim=900000\n";
  const Layout layouts[] = {
      {"Oracle Database 19c Enterprise Edition Release 19.0.0.0.0 - Production\n"
       "Version 19.14.2.0.0\n",
       newer_exec, "\n" + bind + newer_exec},
      // Only the blocks below tell this trace's layout.
      {"", older_exec, " bind 0: dty=2 mxl=22(22)\n   value=5\n" + older_exec},
  };
  for (const Layout& layout : layouts) {
    const std::string& exec = layout.exec;
    const std::string blocks[] = {
        "\n" + bind + bind + exec,
        bind + " Bind#1\n  No oacdef for this bind.\n" + exec,
        bind + "  value=\"two\nlines\"\n" + wait + exec,  // the wait ends it, and is read
        " Bind#0\n  value= Bind#1\n  value=5\n" + exec,   // 11.2.0.4's run-on value
        "\n\n" + wait + exec,                             // no bind named
        bind + "*** 2022-10-25T15:07:20.941104+02:00\n  value=5\n" + exec,
        bind + "*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n" + exec,
        bind + stat + exec,
        bind + "=====================\n" + exec,
    };
    // One block at a time, at places that fall differently in the chunks: the first one the
    // parser meets may be the one that tells the layout.
    for (const std::string& block : blocks) {
      for (const int at : {3, 8, 13}) {
        const TempFile file(TraceOfBlocks(layout.head, block, layout.usual_block, at, false));
        for (const std::uint8_t flags : {std::uint8_t{0}, parser::kSkipWaits}) {
          EXPECT_EQ(DocumentsOrFailure(file.path(), 2, flags),
                    DocumentsOrFailure(file.path(), 0, flags))
              << layout.head << block << at << int{flags};
        }
      }
    }
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
      const TempFile file("");
      ASSERT_TRUE(WriteGeneratedTrace(file, format, 40));
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

// Both kinds of document from one parse, as ParseFile writes them for xmlType 2: the call
// document first, then the aggregated one. Written while the trace is read, the statements stay
// behind in their summary form, and give what the whole statements give after the parse.
TEST(StreamedCalls, StatementsKeptAsSummariesGiveTheAggregatedDocumentToo) {
  for (const auto format : {tracegen::TraceFormat::kOracle9i, tracegen::TraceFormat::kOracle19c}) {
    SCOPED_TRACE(static_cast<int>(format));
    const TempFile file("");
    ASSERT_TRUE(WriteGeneratedTrace(file, format, 40));

    parser::CTraceParser whole;
    whole.SetReadAhead(Workers(0));
    whole.ParseFrom(file.path(), 0, 0);
    std::ostringstream whole_calls;
    {
      parser::OutputSink out(whole_calls);
      parser::WriteCallXml(whole.ClosedStatements(), whole.MakeDocumentContext(), out);
    }

    parser::CTraceParser streamed;
    streamed.SetReadAhead(Workers(2));
    std::ostringstream streamed_calls;
    parser::OutputSink out(streamed_calls);
    parser::StreamedCallDocument document(
        streamed, out, [](parser::OutputSink&) { return true; },
        parser::StreamedCallDocument::Written::kKeptAsSummaries);
    streamed.ParseFrom(file.path(), 0, 0);
    ASSERT_TRUE(document.Finish());
    out.Close();
    EXPECT_EQ(streamed_calls.str(), whole_calls.str());
    EXPECT_EQ(streamed.ClosedStatements().size(), whole.ClosedStatements().size());
    std::size_t summaries = 0;
    for (const auto& statement : streamed.ClosedStatements()) {
      summaries += statement->waits.empty() && statement->wait_count > 0;
    }
    EXPECT_GT(summaries, 40u);
    EXPECT_EQ(AggregatedDocuments(streamed), AggregatedDocuments(whole));
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
