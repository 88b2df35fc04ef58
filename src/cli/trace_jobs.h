// The main jobs of the command, whatever brought the trace: the text report and the three XML
// documents of a parsed trace, read from a local file or through a transport's line stream.
#ifndef PELICOR_CLI_TRACE_JOBS_H_
#define PELICOR_CLI_TRACE_JOBS_H_

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <string>

#include "cli/sort_flags.h"
#include "parser/line_source.h"

namespace cli {

// What every parse of the command takes: where reading starts (the head of the file is still
// read for its banner) and TKPROF's aggregate=yes.
struct ParseOptions {
  std::uint64_t offset = 0;
  bool merge = false;
};

struct ReportJob {
  SortFlags sort;
  ParseOptions parse;
};

enum class XmlKind { kCalls, kAggregate, kStatement };

struct XmlJob {
  SortFlags sort;
  ParseOptions parse;
  bool aggregate = false;
  std::string statement;  // non-empty: the sorted document of the statement holding this text
  bool skip_waits = false;
  bool skip_binds = false;
  bool top_level = false;
  std::string output;  // empty: standard output

  XmlKind Kind() const;
};

// Registers the options of each job on `command`.
void AddReportOptions(CLI::App& command, ReportJob& job);
void AddXmlOptions(CLI::App& command, XmlJob& job);

// A trace read through a transport: the job opens `source` on `name` from the job's offset,
// reads it to the end and closes it.
struct TraceStream {
  parser::LineSource* source = nullptr;
  std::string name;
  // The trace's size once the stream is open (0: unknown), for the progress line.
  std::function<std::uint64_t()> size;
};

// Parse `trace` (a local path, or a stream) and write the report to standard output, or the
// document where the job says. Failures are thrown (exceptions::ExceptionBase or
// std::runtime_error).
void RunReport(const std::string& trace, const ReportJob& job);
void RunReport(const TraceStream& trace, const ReportJob& job);
void RunXml(const std::string& trace, const XmlJob& job);
void RunXml(const TraceStream& trace, const XmlJob& job);

}  // namespace cli

#endif  // PELICOR_CLI_TRACE_JOBS_H_
