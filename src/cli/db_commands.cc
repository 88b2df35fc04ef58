#include "cli/db_commands.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "cli/db_trace.h"
#include "cli/trace_jobs.h"

namespace cli {

namespace {

void AddTargetOptions(CLI::App& command, DbTarget& target) {
  command.add_option("--connect", target.connect, "USER@CONNECT_STRING (a TNS alias or EZConnect)")
      ->required()
      ->group("Connection");
  command
      .add_option("--password-file", target.password_file,
                  "Read the password from the first line of FILE (or set PELICOR_DB_PASSWORD)")
      ->option_text("FILE")
      ->group("Connection");
  command
      .add_option("--via", target.via,
                  "package: the trace package vandel_trace_file_io; diag: "
                  "V$DIAG_TRACE_FILE_CONTENTS; default: the package when it answers")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, DbVia>{{"package", DbVia::kPackage}, {"diag", DbVia::kDiag}}))
      ->group("Connection");
  command.add_option("--sid", target.sid, "The session's SID")->group("Trace");
  command.add_option("--serial", target.serial, "The session's SERIAL#")->group("Trace");
  command.add_option("--file", target.file, "The trace file's name instead of a session")
      ->group("Trace");
}

// A name the server handed us or the user typed must not lead out of the target directory.
void RefuseUnsafeName(const std::string& name) {
  if (name.empty() || name.find_first_of("/\\") != std::string::npos ||
      name.find("..") != std::string::npos) {
    throw std::runtime_error("refusing to write the trace file name " + name);
  }
}

struct GetArgs {
  DbTarget target;
  std::string directory = ".";
};

void RunGet(const GetArgs& args) {
  if (!args.target.file.empty()) RefuseUnsafeName(args.target.file);
  DbTrace trace(args.target);
  const std::string name = trace.Name();
  RefuseUnsafeName(name);
  const std::filesystem::path path = std::filesystem::path(args.directory) / name;
  parser::LineSource& source = trace.Source();
  if (!source.OpenLines(name, 0)) throw std::runtime_error("cannot read " + name);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  std::string_view line;
  while (out && source.ReadNextLine(&line)) {
    out.write(line.data(), static_cast<std::streamsize>(line.size()));
  }
  source.CloseLines();
  out.close();
  if (!out) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    throw std::runtime_error("cannot write " + path.string());
  }
}

template <typename Job>
struct JobArgs {
  DbTarget target;
  Job job;
};

template <typename Job>
void RunJob(const JobArgs<Job>& args) {
  DbTrace trace(args.target);
  const TraceStream stream{&trace.Source(), trace.Name(), [] { return std::uint64_t{0}; }};
  if constexpr (std::is_same_v<Job, XmlJob>) {
    RunXml(stream, args.job);
  } else {
    RunReport(stream, args.job);
  }
}

void AddFindAndGet(CLI::App& db) {
  auto find = std::make_shared<DbTarget>();
  CLI::App* find_command =
      db.add_subcommand("find", "Find the trace file of a session; prints its name");
  AddTargetOptions(*find_command, *find);
  find_command->callback([find] {
    DbTrace trace(*find);
    std::cout << trace.Name() << '\n';
  });

  auto get = std::make_shared<GetArgs>();
  CLI::App* get_command = db.add_subcommand("get", "Copy a trace file out of the database");
  AddTargetOptions(*get_command, get->target);
  get_command->add_option("-o,--output-dir", get->directory, "Copy into DIR")
      ->option_text("DIR")
      ->capture_default_str();
  get_command->callback([get] { RunGet(*get); });
}

void AddJobs(CLI::App& db) {
  auto report = std::make_shared<JobArgs<ReportJob>>();
  CLI::App* report_command =
      db.add_subcommand("report", "TKPROF-style text report of a trace read through the database");
  AddTargetOptions(*report_command, report->target);
  AddReportOptions(*report_command, report->job);
  report_command->callback([report] { RunJob(*report); });

  auto xml = std::make_shared<JobArgs<XmlJob>>();
  CLI::App* xml_command =
      db.add_subcommand("xml", "XML document of a trace read through the database");
  AddTargetOptions(*xml_command, xml->target);
  AddXmlOptions(*xml_command, xml->job);
  xml_command->callback([xml] { RunJob(*xml); });
}

}  // namespace

void AddDbCommands(CLI::App& app) {
  CLI::App* db = app.add_subcommand(
      "db", "Trace files read through a database connection (Oracle client library needed)");
  db->require_subcommand(1);
  AddFindAndGet(*db);
  AddJobs(*db);
}

}  // namespace cli
