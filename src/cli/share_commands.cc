#include "cli/share_commands.h"

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/output.h"
#include "cli/scratch_dir.h"
#include "cli/trace_jobs.h"
#include "support/os/file_copy.h"
#include "support/os/path_separator.h"
#include "transport/nfs/nfs_manager.h"

namespace cli {

namespace {

// The path of a trace file on the share: the dump directory, a separator, the name.
std::string SharePath(const std::string& udump, const std::string& name) {
  return udump + os::kPathSeparator + name;
}

struct ShareListArgs {
  std::string udump;
  std::string pattern = "*.trc";
  bool long_form = false;
  std::string output;
};

struct ShareFileArgs {
  std::string udump;
  std::string name;  // a process id for find, a file name for get
  std::string directory = ".";
};

void RunList(const ShareListArgs& args) {
  ScratchDir scratch;
  transport::CNfsManager share;
  share.SetConnectInfo(args.udump.c_str());
  share.SetLocalDirectory(scratch.path().string());
  share.GetTraceFileList(args.long_form ? 1 : 0, args.pattern);
  DeliverFile((scratch.path() / transport::CNfsManager::kListingFileName).string(), args.output);
}

void RunFind(const ShareFileArgs& args) {
  transport::CNfsManager share;
  share.SetConnectInfo(args.udump.c_str());
  const transport::CNfsManager::FoundTraceFile found = share.FindTraceFileOfPID(args.name);
  std::cout << found.name << ' ' << found.size << '\n';
}

void RunGet(const ShareFileArgs& args) {
  const std::string source = SharePath(args.udump, args.name);
  const std::string target = (std::filesystem::path(args.directory) / args.name).string();
  std::string error;
  if (!os::CopyFileOverwrite(source, target, &error)) {
    throw std::runtime_error("cannot copy " + source + " to " + target + ": " + error);
  }
}

void AddList(CLI::App& share) {
  auto args = std::make_shared<ShareListArgs>();
  CLI::App* list = share.add_subcommand("list", "List the trace files of a dump directory");
  list->add_option("UDUMP", args->udump, "The dump directory")->required();
  list->add_flag("--long,-l", args->long_form, "Size and last-write time before each name");
  list->add_option("--pattern,-p", args->pattern, "Names to list (wildcards * and ?)")
      ->capture_default_str();
  list->add_option("-o,--output", args->output, "Write the listing to FILE, not standard output")
      ->option_text("FILE");
  list->callback([args] { RunList(*args); });
}

void AddFind(CLI::App& share) {
  auto args = std::make_shared<ShareFileArgs>();
  CLI::App* find = share.add_subcommand(
      "find", "Find the trace file of a server process; prints its name and size");
  find->add_option("UDUMP", args->udump, "The dump directory")->required();
  find->add_option("PID", args->name, "The server process id (at most five characters)")
      ->required();
  find->callback([args] { RunFind(*args); });
}

void AddGet(CLI::App& share) {
  auto args = std::make_shared<ShareFileArgs>();
  CLI::App* get = share.add_subcommand("get", "Copy a trace file out of a dump directory");
  get->add_option("UDUMP", args->udump, "The dump directory")->required();
  get->add_option("NAME", args->name, "The trace file's name")->required();
  get->add_option("-o,--output-dir", args->directory, "Copy into DIR")
      ->option_text("DIR")
      ->capture_default_str();
  get->callback([args] { RunGet(*args); });
}

template <typename Job>
struct ShareJobArgs {
  std::string udump;
  std::string name;
  Job job;
};

void AddParseCommands(CLI::App& share) {
  auto report = std::make_shared<ShareJobArgs<ReportJob>>();
  CLI::App* report_command = share.add_subcommand(
      "report", "TKPROF-style text report of a trace file on the share, on standard output");
  report_command->add_option("UDUMP", report->udump, "The dump directory")->required();
  report_command->add_option("NAME", report->name, "The trace file's name")->required();
  AddReportOptions(*report_command, report->job);
  report_command->callback(
      [report] { RunReport(SharePath(report->udump, report->name), report->job); });

  auto xml = std::make_shared<ShareJobArgs<XmlJob>>();
  CLI::App* xml_command =
      share.add_subcommand("xml", "XML document of a trace file on the share, read in place");
  xml_command->add_option("UDUMP", xml->udump, "The dump directory")->required();
  xml_command->add_option("NAME", xml->name, "The trace file's name")->required();
  AddXmlOptions(*xml_command, xml->job);
  xml_command->callback([xml] { RunXml(SharePath(xml->udump, xml->name), xml->job); });
}

}  // namespace

void AddShareCommands(CLI::App& app) {
  CLI::App* share = app.add_subcommand(
      "share", "Trace files in a dump directory reachable as a path (mounted share)");
  share->require_subcommand(1);
  AddList(*share);
  AddFind(*share);
  AddGet(*share);
  AddParseCommands(*share);
}

}  // namespace cli
