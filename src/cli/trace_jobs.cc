#include "cli/trace_jobs.h"

#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "cli/left_at_exit.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "cli/stream_progress.h"
#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/output_sink.h"
#include "parser/streamed_call_document.h"
#include "parser/trace_parser.h"
#include "support/exceptions.h"
#include "support/os/pending_file.h"

namespace cli {

namespace {

void AddSortOptions(CLI::App& command, SortFlags& sort) {
  command.add_option("--sort", sort.kinds, "Sort by the totals of these calls: prs,exe,fch")
      ->option_text("KINDS");
  command
      .add_option("--key", sort.key,
                  "Sort key: count|cpu|elapsed|disk|query|current|"
                  "misses|rows")
      ->capture_default_str();
}

void AddParseOptions(CLI::App& command, ParseOptions& parse) {
  command
      .add_option("--offset", parse.offset,
                  "Parse from byte N on; the banner is still read from the file's start")
      ->option_text("N");
  command.add_flag("--merge", parse.merge,
                   "Merge statements with identical SQL text (TKPROF's aggregate=yes)");
}

// Keeps the sort options alive as long as the parser that points at them.
struct ParseSetup {
  std::optional<parser::SortOptions> sort;
  parser::CTraceParser parser;

  ParseSetup(const SortFlags& flags, const ParseOptions& parse)
      : sort(ToSortOptions(flags)), parser(sort ? &*sort : nullptr, parse.merge) {}
};

std::uint64_t FileSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

std::uint8_t ParseFlags(const XmlJob& job) {
  std::uint8_t flags = 0;
  if (job.skip_waits) flags |= parser::kSkipWaits;
  if (job.skip_binds) flags |= parser::kSkipBinds;
  if (job.top_level) flags |= parser::kTopLevelOnly;
  return flags;
}

// Reads a whole trace into the parser, with the flags that leave lines out.
using ParseInput = std::function<void(parser::CTraceParser& parser, std::uint8_t flags)>;

// A local file from `offset`, with progress on a terminal.
void ParseFile(parser::CTraceParser& parser, const std::string& trace, std::uint64_t offset,
               std::uint8_t flags) {
  ProgressMeter progress("parsing " + trace, FileSize(trace));
  parser.SetProgressCallback([&progress](std::uint64_t done) { progress.Update(done); });
  parser.ParseFrom(trace, offset, flags);
  parser.SetProgressCallback(nullptr);
}

void ParseStream(parser::CTraceParser& parser, const TraceStream& trace, std::uint64_t offset,
                 std::uint8_t flags) {
  StreamProgress source(*trace.source, trace.size);
  parser.ParseStreamFrom(source, trace.name, offset, flags);
}

using WriteDocument = std::function<void(parser::OutputSink& sink)>;

// Writes a document to standard output or, under a temporary name renamed when complete, to
// the file `output`.
void WriteOutput(const std::string& output, const WriteDocument& write) {
  if (output.empty()) {
    parser::OutputSink sink(std::cout, parser::LineEnds::kNative);
    write(sink);
    sink.Close();
    FinishStandardOutput();
    return;
  }
  parser::OutputSink sink;
  if (!sink.OpenFile(output)) {
    throw std::runtime_error("cannot create " + output + ": " + sink.ErrorText());
  }
  write(sink);
  if (!sink.Close()) throw std::runtime_error("cannot write " + output + ": " + sink.ErrorText());
}

void WriteCallDocument(parser::CTraceParser& parser, const std::string& output) {
  const parser::DocumentContext context = parser.MakeDocumentContext();
  WriteOutput(output, [&](parser::OutputSink& sink) {
    parser::WriteCallXml(parser.ClosedStatements(), context, sink);
  });
}

// The aggregated documents go straight to their target: every check of the library's writers
// (an empty trace, a name without ".trc", the statement's matches) is made before a byte is
// written, so a failing job leaves no output, as when the document was made beside the trace.
void WriteAggregatedDocument(parser::CTraceParser& parser, const std::string& trace, bool sorted,
                             const std::string& output) {
  const std::string name = std::filesystem::path(trace).filename().string();
  const parser::DocumentContext context = parser.MakeDocumentContext();
  parser::StatementList& closed = parser.ClosedStatements();
  if (sorted) {
    parser::CheckSortedXml(closed, context, name);
    WriteOutput(output,
                [&](parser::OutputSink& sink) { parser::WriteSortedXml(closed, context, sink); });
  } else {
    parser::CheckTkprofXml(closed, name);
    WriteOutput(output,
                [&](parser::OutputSink& sink) { parser::WriteTkprofXml(closed, context, sink); });
  }
}

}  // namespace

XmlKind XmlJob::Kind() const {
  if (!statement.empty()) return XmlKind::kStatement;
  return aggregate ? XmlKind::kAggregate : XmlKind::kCalls;
}

void AddReportOptions(CLI::App& command, ReportJob& job) {
  AddSortOptions(command, job.sort);
  AddParseOptions(command, job.parse);
}

void AddXmlOptions(CLI::App& command, XmlJob& job) {
  CLI::Option* calls = command.add_flag("--calls", "Every call, bind, wait and plan row (default)");
  CLI::Option* aggregate =
      command.add_flag("--aggregate", job.aggregate, "One TKPROF-like entry per statement");
  CLI::Option* statement =
      command.add_option("--statement", job.statement,
                         "Only the statement whose SQL text holds TEXT, with plan details");
  statement->option_text("TEXT");
  calls->excludes(aggregate)->excludes(statement);
  aggregate->excludes(statement);
  AddSortOptions(command, job.sort);
  AddParseOptions(command, job.parse);
  command.add_flag("--skip-waits", job.skip_waits, "Leave out WAIT lines (call document)");
  command.add_flag("--skip-binds", job.skip_binds, "Leave out BINDS blocks (call document)");
  command.add_flag("--top-level", job.top_level, "Only statements of depth 0 (call document)");
  command.add_option("-o,--output", job.output, "Write to FILE, not standard output")
      ->option_text("FILE");
}

namespace {

// Turns running out of memory into a message that says while doing what.
template <typename Step>
void Doing(const std::string& what, Step&& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    throw std::runtime_error("out of memory while " + what);
  }
}

void Report(const std::string& trace, const ParseInput& parse, const ReportJob& job) {
  auto setup = std::make_unique<ParseSetup>(job.sort, job.parse);
  parser::CTraceParser& parsed = setup->parser;
  parsed.SetSummaryOnly(true);  // the report reads no call, bind or wait record
  Doing("parsing " + trace, [&] { parse(parsed, 0); });
  Doing("writing the report of " + trace, [&] {
    parsed.SortClosedStatements();
    parsed.WriteTextReport(std::cout);
  });
  FinishStandardOutput();
  LeaveAtExit(std::move(setup));
}

// Without sorting or merging, a call document is written as the trace is read.
bool StreamsCallDocument(const XmlJob& job, const ParseSetup& setup) {
  return job.Kind() == XmlKind::kCalls && !setup.sort && !job.parse.merge;
}

// The statements go out as soon as no later line can reach them. A file takes its name only
// when the parse and the document are complete: a parse that fails half-way (a trace that
// reached its size limit) leaves no half document. On standard output what was written stays,
// as with any filter that fails.
void StreamCalls(const std::string& trace, const ParseInput& parse, const XmlJob& job,
                 ParseSetup& setup) {
  const bool to_file = !job.output.empty();
  parser::OutputSink file;
  parser::OutputSink standard(std::cout, parser::LineEnds::kNative);
  parser::OutputSink& sink = to_file ? file : standard;
  parser::StreamedCallDocument document(setup.parser, sink, [&](parser::OutputSink& out) {
    return !to_file || out.OpenFile(job.output);
  });
  Doing("parsing " + trace, [&] { parse(setup.parser, ParseFlags(job)); });
  Doing("writing the document of " + trace, [&] {
    // A file that could not be made is tried again the usual way, which says why.
    if (!document.Finish()) return WriteCallDocument(setup.parser, job.output);
    if (!to_file) {
      sink.Close();
      FinishStandardOutput();
    } else if (!sink.Close()) {
      throw std::runtime_error("cannot write " + job.output + ": " + sink.ErrorText());
    }
  });
}

// `trace` names the trace: the aggregated documents are named after it.
void Xml(const std::string& trace, const ParseInput& parse, const XmlJob& job) {
  auto held = std::make_unique<ParseSetup>(job.sort, job.parse);
  ParseSetup& setup = *held;
  if (StreamsCallDocument(job, setup)) {
    StreamCalls(trace, parse, job, setup);
    LeaveAtExit(std::move(held));
    return;
  }
  if (job.Kind() == XmlKind::kStatement) setup.parser.SetStatementId(job.statement);
  // The aggregated documents read no call, bind or wait record: keep none.
  setup.parser.SetSummaryOnly(job.Kind() != XmlKind::kCalls);
  Doing("parsing " + trace,
        [&] { parse(setup.parser, job.Kind() == XmlKind::kCalls ? ParseFlags(job) : 0); });
  Doing("writing the document of " + trace, [&] {
    setup.parser.SortClosedStatements();
    switch (job.Kind()) {
      case XmlKind::kCalls:
        WriteCallDocument(setup.parser, job.output);
        break;
      case XmlKind::kAggregate:
        WriteAggregatedDocument(setup.parser, trace, false, job.output);
        break;
      case XmlKind::kStatement:
        WriteAggregatedDocument(setup.parser, trace, true, job.output);
        break;
    }
  });
  LeaveAtExit(std::move(held));
}

// The parser's "Trace parser failed to open parse file!" names neither the file nor the
// reason; the command adds both ("... x.trc: not a regular file").
void ExplainOpenFailure(const std::string& trace, const std::function<void()>& parse) {
  try {
    parse();
  } catch (const exceptions::ExceptionBase& failure) {
    const std::string message = failure.Message();
    if (message.rfind("Trace parser failed to open parse file", 0) != 0) throw;
    std::string reason = os::RegularFileProblem(trace);
    if (reason.empty()) reason = "cannot be read";
    throw std::runtime_error(message + " " + trace + ": " + reason);
  }
}

ParseInput FileInput(const std::string& trace, std::uint64_t offset) {
  return [&trace, offset](parser::CTraceParser& parser, std::uint8_t flags) {
    ExplainOpenFailure(trace, [&] { ParseFile(parser, trace, offset, flags); });
  };
}

ParseInput StreamInput(const TraceStream& trace, std::uint64_t offset) {
  return [&trace, offset](parser::CTraceParser& parser, std::uint8_t flags) {
    ParseStream(parser, trace, offset, flags);
  };
}

}  // namespace

void RunReport(const std::string& trace, const ReportJob& job) {
  Report(trace, FileInput(trace, job.parse.offset), job);
}

void RunReport(const TraceStream& trace, const ReportJob& job) {
  Report(trace.name, StreamInput(trace, job.parse.offset), job);
}

void RunXml(const std::string& trace, const XmlJob& job) {
  Xml(trace, FileInput(trace, job.parse.offset), job);
}

void RunXml(const TraceStream& trace, const XmlJob& job) {
  Xml(trace.name, StreamInput(trace, job.parse.offset), job);
}

}  // namespace cli
