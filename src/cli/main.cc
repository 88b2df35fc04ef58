// pelicor: Oracle SQL trace files to TKPROF-style reports and XML, from local files, a mounted
// dump directory, an FTP or SFTP server, or a database connection.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>

#include "cli/db_commands.h"
#include "cli/ftp_commands.h"
#include "cli/local_commands.h"
#include "cli/profile_commands.h"
#include "cli/sftp_commands.h"
#include "cli/share_commands.h"
#include "support/activity_log.h"
#include "support/exceptions.h"
#include "support/os/termination.h"

namespace {

constexpr const char* kVersion = "pelicor 0.1.0";

int Fail(const std::string& message) {
  std::cerr << "pelicor: " << message << '\n';
  return 1;
}

// Switches the activity log on as soon as the option is read, before any subcommand runs, and
// notes it in *enabled.
void AddActivityLogOption(CLI::App& app, bool* enabled) {
  app.add_option_function<std::string>(
         "--activity-log",
         [enabled](const std::string& path) {
           std::string error;
           if (!support::ActivityLog::Enable(path, &error)) throw std::runtime_error(error);
           *enabled = true;
         },
         "Record every failure, with its source and time, in the XML file FILE")
      ->option_text("FILE")
      ->trigger_on_parse();
}

// "pelicor share get": the subcommands the user chose.
std::string CommandName(const CLI::App& app) {
  std::string name = "pelicor";
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) {
    at = at->get_subcommands().front();
    name += " " + at->get_name();
  }
  return name;
}

int OutOfMemory(const CLI::App& app) {
  try {
    return Fail("out of memory while running " + CommandName(app));
  } catch (const std::bad_alloc&) {
    std::fputs("pelicor: out of memory\n", stderr);
    return 1;
  }
}

// Ends the log's document however the command ends; a command without the log leaves it alone.
struct ActivityLogCloser {
  bool enabled = false;
  ~ActivityLogCloser() {
    if (enabled) support::ActivityLog::Disable();
  }
};

}  // namespace

int main(int argc, char** argv) {
  // First, before any thread starts: an interrupted command removes its scratch folder and
  // half-written files.
  const os::TerminationCleanup cleanup;
  CLI::App app("Oracle SQL trace files to TKPROF-style reports and XML documents", "pelicor");
  app.set_version_flag("--version", kVersion);
  app.require_subcommand(1);
  ActivityLogCloser log_closer;
  AddActivityLogOption(app, &log_closer.enabled);
  cli::AddLocalCommands(app);
  cli::AddProfileCommands(app);
  cli::AddShareCommands(app);
  cli::AddFtpCommands(app);
  cli::AddDbCommands(app);
  cli::AddSftpCommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  } catch (const exceptions::ExceptionBase& e) {
    return Fail(e.Message());
  } catch (const std::bad_alloc&) {
    return OutOfMemory(app);
  } catch (const std::exception& e) {
    return Fail(e.what());
  }
  return 0;
}
