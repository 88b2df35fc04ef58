#include "cli/local_commands.h"

#include <memory>
#include <string>

#include "cli/local_trace.h"
#include "cli/trace_jobs.h"

namespace cli {

namespace {

template <typename Job>
struct LocalArgs {
  std::string trace;
  Job job;
};

}  // namespace

void AddLocalCommands(CLI::App& app) {
  auto report = std::make_shared<LocalArgs<ReportJob>>();
  CLI::App* report_command =
      app.add_subcommand("report", "TKPROF-style text report of a trace file, on standard output");
  report_command
      ->add_option("TRACE", report->trace, "The trace file (compressed, .zip, - for stdin)")
      ->required();
  AddReportOptions(*report_command, report->job);
  report_command->callback([report] { RunReport(LocalTrace(report->trace).path(), report->job); });

  auto xml = std::make_shared<LocalArgs<XmlJob>>();
  CLI::App* xml_command = app.add_subcommand("xml", "XML document of a trace file");
  xml_command->add_option("TRACE", xml->trace, "The trace file (compressed, .zip, - for stdin)")
      ->required();
  AddXmlOptions(*xml_command, xml->job);
  xml_command->callback([xml] { RunXml(LocalTrace(xml->trace).path(), xml->job); });
}

}  // namespace cli
