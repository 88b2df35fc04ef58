#include "cli/ftp_commands.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
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
#include "support/exceptions.h"
#include "support/os/pending_file.h"
#include "transport/ftp_manager/ftp_manager.h"

namespace cli {

namespace {

constexpr const char* kPasswordVariable = "PELICOR_FTP_PASSWORD";

struct Connection {
  std::string host;
  std::string user;
  std::string udump;
  std::string password;
  std::string password_file;
  bool active = false;
  bool passive = false;  // the default; kept so that older scripts still run
  int timeout = 30;
  bool tls = false;
  std::string ca_file;
  bool insecure = false;
};

// The first line of the password file, or --password, or the environment's.
std::string Password(const Connection& connection) {
  if (!connection.password_file.empty()) return ReadPasswordFile(connection.password_file);
  if (!connection.password.empty()) return connection.password;
  if (const char* password = std::getenv(kPasswordVariable)) return password;
  throw std::runtime_error(std::string("no FTP password: give --password-file FILE or set ") +
                           kPasswordVariable);
}

// FTP over TLS as asked; --insecure is said out loud, as it gives the password to whoever
// can pose as the server.
void SetTls(transport::CFtpManager& manager, const Connection& connection) {
  if (!connection.tls) return;
  if (connection.insecure) {
    std::cerr << "pelicor: warning: --insecure: the certificate of " << connection.host
              << " is not checked; whoever can pose as that server gets the password\n";
  }
  manager.SetTls(true, transport::TlsOptions{connection.ca_file, !connection.insecure});
}

// A manager logged on to the dump directory, writing into `work_dir`. A failed log-on says
// why in the client's words after the message every host knows:
//   FTP failed to logon with the given info! Check ftp hostname/username/password.
//   (db01:21: Can not resolve host adress)
std::unique_ptr<transport::CFtpManager> Connect(const Connection& connection,
                                                const std::string& work_dir) {
  const std::string password = Password(connection);
  auto manager = std::make_unique<transport::CFtpManager>();
  SetTls(*manager, connection);
  manager->SetConnectInfo(connection.host.c_str(), connection.user.c_str(), password.c_str(),
                          connection.udump.c_str());
  manager->SetWorkDir(work_dir);
  if (connection.active) manager->SetPassiveMode(false);
  manager->SetTimeOut(connection.timeout);
  try {
    manager->Init();
  } catch (const exceptions::ExceptionBase& e) {
    if (manager->LastFailureReason().empty()) throw;
    throw std::runtime_error(e.Message() + " (" + connection.host + ": " +
                             manager->LastFailureReason() + ")");
  }
  return manager;
}

void AddTlsOptions(CLI::App& command, Connection& connection) {
  CLI::Option* tls =
      command
          .add_flag("--tls", connection.tls,
                    "FTP over TLS (AUTH TLS): encrypt the log-on and the data; stop when the "
                    "server refuses")
          ->group("Connection");
  CLI::Option* ca_file =
      command
          .add_option("--ca-file", connection.ca_file,
                      "Trust the certificate authorities in FILE (PEM), not the system's")
          ->option_text("FILE")
          ->needs(tls)
          ->group("Connection");
  command
      .add_flag("--insecure", connection.insecure,
                "Accept any certificate (a test server's self-signed one); warns on stderr")
      ->needs(tls)
      ->excludes(ca_file)
      ->group("Connection");
}

void AddConnectionOptions(CLI::App& command, Connection& connection) {
  command.add_option("--host", connection.host, "The FTP server, as HOST or HOST:PORT")
      ->required()
      ->group("Connection");
  command.add_option("--user", connection.user, "The FTP account")->required()->group("Connection");
  command.add_option("--udump", connection.udump, "The server's trace directory (user_dump_dest)")
      ->required()
      ->group("Connection");
  command
      .add_option("--password-file", connection.password_file,
                  std::string("Read the password from the first line of FILE (or set ") +
                      kPasswordVariable + ")")
      ->option_text("FILE")
      ->group("Connection");
  command
      .add_option("--password", connection.password,
                  "The password itself; discouraged: other users can see it in the process list")
      ->group("Connection");
  command
      .add_flag("--active", connection.active,
                "Active data connections only (PORT): the server connects back to us")
      ->group("Connection");
  command
      .add_flag("--passive", connection.passive,
                "Passive data connections (EPSV, PASV; the default, active only when the "
                "server refuses both)")
      ->group("Connection");
  command
      .add_option("--timeout", connection.timeout,
                  "Seconds an operation may wait for the server (1 to 86400)")
      ->capture_default_str()
      ->check(CLI::Range(1, 86400))
      ->group("Connection");
  AddTlsOptions(command, connection);
}

template <typename Args>
std::shared_ptr<Args> AddCommand(CLI::App& ftp, const char* name, const char* description,
                                 CLI::App** command) {
  auto args = std::make_shared<Args>();
  *command = ftp.add_subcommand(name, description);
  AddConnectionOptions(**command, args->connection);
  return args;
}

struct ListArgs {
  Connection connection;
  bool long_form = false;
  std::string pattern = "*.trc";
  std::string output;
};

void AddList(CLI::App& ftp) {
  CLI::App* list = nullptr;
  auto args =
      AddCommand<ListArgs>(ftp, "list", "List the trace files of the dump directory", &list);
  list->add_flag("--long,-l", args->long_form, "The server's long listing (sizes and dates)");
  list->add_option("--pattern,-p", args->pattern, "Names to list (the server's wildcards)")
      ->capture_default_str();
  list->add_option("-o,--output", args->output, "Write the listing to FILE, not standard output")
      ->option_text("FILE");
  list->callback([args] {
    ScratchDir scratch;
    auto manager = Connect(args->connection, scratch.path().string());
    manager->GetFileList(args->long_form ? 1 : 0, args->pattern);
    manager->Close();
    DeliverListing((scratch.path() / transport::CFtpManager::kListingFileName).string(),
                   args->output);
  });
}

struct FileArgs {
  Connection connection;
  std::string name;  // a process id for find, a file name for the others
  std::string directory = ".";
  std::uint64_t max_size = 0;  // get: the most bytes to take; 0 without limit
};

void AddFind(CLI::App& ftp) {
  CLI::App* find = nullptr;
  auto args = AddCommand<FileArgs>(
      ftp, "find", "Find the trace file of a server process; prints its name and size", &find);
  find->add_option("PID", args->name,
                   "The server process id: PID*.trc, else *PID*.trc (orcl_ora_PID.trc)")
      ->required();
  find->callback([args] {
    ScratchDir scratch;
    auto manager = Connect(args->connection, scratch.path().string());
    std::string name;
    const std::uint32_t size = manager->GetTraceFileNameFromPID(args->name, &name);
    manager->Close();
    std::cout << name << ' ' << size << '\n';
  });
}

// Copies the bytes as they are (binary), straight from the data connection, into a temporary
// file beside the target that takes the target's name only once the server has confirmed the
// transfer: a failed one leaves nothing (and never removes what was there before).
void RunGet(const FileArgs& args) {
  auto manager = Connect(args.connection, args.directory);
  const std::string target =
      (std::filesystem::path(args.directory) / std::filesystem::path(args.name).filename())
          .string();
  os::PendingFile local;
  std::string error;
  if (!local.Create(target, &error))
    throw std::runtime_error("cannot create " + target + ": " + error);
  os::CloseFile(local.ReleaseHandle());  // the transfer writes it by name
  manager->OpenDataStream(args.name, 0);
  ProgressMeter progress("fetching " + args.name, manager->GetFileSize(args.name));
  try {
    manager->SaveDataStream(
        local.path(), [&progress](std::uint64_t done) { progress.Update(done); }, args.max_size);
  } catch (const exceptions::ExceptionBase& failure) {
    // The user knows the file by the name asked for, not by the temporary one.
    std::string message = failure.Message();
    const std::size_t at = message.find(local.path());
    if (at != std::string::npos) message.replace(at, local.path().size(), target);
    throw std::runtime_error(message);
  }
  manager->CloseDataStream();
  if (!local.Commit(&error)) throw std::runtime_error("cannot write " + target + ": " + error);
  manager->Close();
}

void AddGet(CLI::App& ftp) {
  CLI::App* get = nullptr;
  auto args = AddCommand<FileArgs>(ftp, "get", "Copy a trace file from the dump directory", &get);
  get->add_option("NAME", args->name, "The trace file's name")->required();
  get->add_option("-o,--output-dir", args->directory, "Copy into DIR")
      ->option_text("DIR")
      ->capture_default_str();
  get->add_option("--max-size", args->max_size,
                  "Stop with an error once more than BYTES arrive (a server that never ends)")
      ->option_text("BYTES");
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
  transport::CFtpManager& stream = *manager;
  const std::string& name = args.name;
  const TraceStream trace{manager.get(), name,
                          [&stream, &name] { return stream.GetFileSize(name); }};
  if constexpr (std::is_same_v<Job, XmlJob>) {
    RunXml(trace, args.job);
  } else {
    RunReport(trace, args.job);
  }
  manager->Close();
}

void AddStreamJobs(CLI::App& ftp) {
  CLI::App* report = nullptr;
  auto report_args = AddCommand<StreamArgs<ReportJob>>(
      ftp, "report", "TKPROF-style text report of a remote trace file, on standard output",
      &report);
  report->add_option("NAME", report_args->name, "The trace file's name")->required();
  AddReportOptions(*report, report_args->job);
  report->callback([report_args] { RunStreamJob(*report_args); });

  CLI::App* xml = nullptr;
  auto xml_args =
      AddCommand<StreamArgs<XmlJob>>(ftp, "xml", "XML document of a remote trace file", &xml);
  xml->add_option("NAME", xml_args->name, "The trace file's name")->required();
  AddXmlOptions(*xml, xml_args->job);
  xml->callback([xml_args] { RunStreamJob(*xml_args); });
}

}  // namespace

void AddFtpCommands(CLI::App& app) {
  CLI::App* ftp = app.add_subcommand("ftp", "Trace files in a dump directory reached over FTP");
  ftp->require_subcommand(1);
  AddList(*ftp);
  AddFind(*ftp);
  AddGet(*ftp);
  AddStreamJobs(*ftp);
}

}  // namespace cli
