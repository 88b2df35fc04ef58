#include "cli/sftp_commands.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "cli/output.h"
#include "cli/password_file.h"
#include "cli/progress.h"
#include "cli/scratch_dir.h"
#include "cli/trace_jobs.h"
#include "transport/sftp/sftp_manager.h"

namespace cli {

namespace {

constexpr const char* kPasswordVariable = "PELICOR_SFTP_PASSWORD";

struct Connection {
  std::string address;  // HOST or HOST:PORT
  transport::sftp::SftpOptions options;
  std::string password_file;
  std::string password;
};

// The first line of the password file, or --password, or the environment's; empty when none is
// given (keys alone may do).
std::string Password(const Connection& connection) {
  if (!connection.password_file.empty()) return ReadPasswordFile(connection.password_file);
  if (!connection.password.empty()) return connection.password;
  const char* password = std::getenv(kPasswordVariable);
  return password != nullptr ? password : "";
}

// A manager logged on to the dump directory, writing listings into `work_dir`.
std::unique_ptr<transport::CSftpManager> Connect(const Connection& connection,
                                                 const std::string& work_dir) {
  transport::sftp::SftpOptions options = connection.options;
  if (!transport::sftp::SetHostAndPort(connection.address, &options)) {
    throw std::runtime_error("not a host or HOST:PORT: " + connection.address);
  }
  options.password = Password(connection);
  auto manager = std::make_unique<transport::CSftpManager>();
  manager->SetOptions(std::move(options));
  manager->SetWorkDir(work_dir);
  manager->Init();
  return manager;
}

void AddConnectionOptions(CLI::App& command, Connection& connection) {
  transport::sftp::SftpOptions& options = connection.options;
  command.add_option("--host", connection.address, "The SSH server, as HOST or HOST:PORT")
      ->required()
      ->group("Connection");
  command.add_option("--user", options.user, "The account")->required()->group("Connection");
  command.add_option("--udump", options.udump, "The server's trace directory (user_dump_dest)")
      ->required()
      ->group("Connection");
  command
      .add_option("--identity,-i", options.identity,
                  "Log on with the private key in FILE (default: the SSH agent, ~/.ssh's keys)")
      ->option_text("FILE")
      ->group("Connection");
  command
      .add_option("--password-file", connection.password_file,
                  std::string("Read the password from the first line of FILE (or set ") +
                      kPasswordVariable + "); tried after the keys")
      ->option_text("FILE")
      ->group("Connection");
  command
      .add_option("--password", connection.password,
                  "The password itself; discouraged: other users can see it in the process list")
      ->group("Connection");
  command
      .add_option("--known-hosts", options.known_hosts,
                  "The host keys to trust (default: ~/.ssh/known_hosts)")
      ->option_text("FILE")
      ->group("Connection");
  command
      .add_flag("--accept-new-host-key", options.accept_new_host_key,
                "Trust and record the key of a server the known-hosts file does not know "
                "(a changed key is never accepted)")
      ->group("Connection");
  command.add_option("--timeout", options.timeout_seconds, "Seconds to wait for the server")
      ->capture_default_str()
      ->group("Connection");
}

template <typename Args>
std::shared_ptr<Args> AddCommand(CLI::App& sftp, const char* name, const char* description,
                                 CLI::App** command) {
  auto args = std::make_shared<Args>();
  *command = sftp.add_subcommand(name, description);
  AddConnectionOptions(**command, args->connection);
  return args;
}

struct ListArgs {
  Connection connection;
  bool long_form = false;
  std::string pattern = "*.trc";
  std::string output;
};

void AddList(CLI::App& sftp) {
  CLI::App* list = nullptr;
  auto args =
      AddCommand<ListArgs>(sftp, "list", "List the trace files of the dump directory", &list);
  list->add_flag("--long,-l", args->long_form, "Size and last-write time before each name");
  list->add_option("--pattern,-p", args->pattern, "Names to list (wildcards * and ?)")
      ->capture_default_str();
  list->add_option("-o,--output", args->output, "Write the listing to FILE, not standard output")
      ->option_text("FILE");
  list->callback([args] {
    ScratchDir scratch;
    auto manager = Connect(args->connection, scratch.path().string());
    manager->GetFileList(args->long_form ? 1 : 0, args->pattern);
    manager->Close();
    DeliverFile((scratch.path() / transport::CSftpManager::kListingFileName).string(),
                args->output);
  });
}

struct FileArgs {
  Connection connection;
  std::string name;  // a process id for find, a file name for get
  std::string directory = ".";
};

void AddFind(CLI::App& sftp) {
  CLI::App* find = nullptr;
  auto args = AddCommand<FileArgs>(
      sftp, "find", "Find the trace file of a server process; prints its name and size", &find);
  find->add_option("PID", args->name, "The server process id; names that hold it are candidates")
      ->required();
  find->callback([args] {
    ScratchDir scratch;
    auto manager = Connect(args->connection, scratch.path().string());
    std::string name;
    const std::uint64_t size = manager->GetTraceFileNameFromPID(args->name, &name);
    manager->Close();
    std::cout << name << ' ' << size << '\n';
  });
}

void RunGet(const FileArgs& args) {
  auto manager = Connect(args.connection, args.directory);
  std::unique_ptr<ProgressMeter> progress;
  manager->RetrieveFile(
      args.name, args.directory, [&progress, &args](std::uint64_t done, std::uint64_t size) {
        if (!progress) {
          progress = std::make_unique<ProgressMeter>("fetching " + args.name, size);
        }
        progress->Update(done);
      });
  manager->Close();
}

void AddGet(CLI::App& sftp) {
  CLI::App* get = nullptr;
  auto args = AddCommand<FileArgs>(sftp, "get", "Copy a trace file from the dump directory", &get);
  get->add_option("NAME", args->name, "The trace file's name")->required();
  get->add_option("-o,--output-dir", args->directory, "Copy into DIR")
      ->option_text("DIR")
      ->capture_default_str();
  get->callback([args] { RunGet(*args); });
}

template <typename Job>
struct StreamArgs {
  Connection connection;
  std::string name;
  Job job;
};

// Parses the remote trace as it streams in; nothing is stored locally.
template <typename Job>
void RunStreamJob(const StreamArgs<Job>& args) {
  ScratchDir scratch;
  auto manager = Connect(args.connection, scratch.path().string());
  const transport::CSftpManager& stream = *manager;
  const TraceStream trace{manager.get(), args.name, [&stream] { return stream.OpenedSize(); }};
  if constexpr (std::is_same_v<Job, XmlJob>) {
    RunXml(trace, args.job);
  } else {
    RunReport(trace, args.job);
  }
  manager->Close();
}

void AddStreamJobs(CLI::App& sftp) {
  CLI::App* report = nullptr;
  auto report_args = AddCommand<StreamArgs<ReportJob>>(
      sftp, "report", "TKPROF-style text report of a remote trace file, on standard output",
      &report);
  report->add_option("NAME", report_args->name, "The trace file's name")->required();
  AddReportOptions(*report, report_args->job);
  report->callback([report_args] { RunStreamJob(*report_args); });

  CLI::App* xml = nullptr;
  auto xml_args =
      AddCommand<StreamArgs<XmlJob>>(sftp, "xml", "XML document of a remote trace file", &xml);
  xml->add_option("NAME", xml_args->name, "The trace file's name")->required();
  AddXmlOptions(*xml, xml_args->job);
  xml->callback([xml_args] { RunStreamJob(*xml_args); });
}

}  // namespace

void AddSftpCommands(CLI::App& app) {
  CLI::App* sftp =
      app.add_subcommand("sftp", "Trace files in a dump directory reached over SFTP (SSH)");
  sftp->require_subcommand(1);
  AddList(*sftp);
  AddFind(*sftp);
  AddGet(*sftp);
  AddStreamJobs(*sftp);
}

}  // namespace cli
