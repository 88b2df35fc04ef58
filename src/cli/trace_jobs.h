// The main jobs of the command, whatever brought the trace: the text report and the three XML
// documents of a parsed trace file.
#ifndef PELICOR_CLI_TRACE_JOBS_H_
#define PELICOR_CLI_TRACE_JOBS_H_

#include <CLI/CLI.hpp>

#include <string>

#include "cli/sort_flags.h"

namespace cli {

struct ReportJob {
  SortFlags sort;
};

enum class XmlKind { kCalls, kAggregate, kStatement };

struct XmlJob {
  SortFlags sort;
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

// Parse `trace` (a local path) and write the report to standard output, or the document where
// the job says. Failures are thrown (exceptions::ExceptionBase or std::runtime_error).
void RunReport(const std::string& trace, const ReportJob& job);
void RunXml(const std::string& trace, const XmlJob& job);

}  // namespace cli

#endif  // PELICOR_CLI_TRACE_JOBS_H_
