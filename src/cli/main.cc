// pelicor: Oracle SQL trace files to TKPROF-style reports and XML, from local files, a mounted
// dump directory or an FTP server.
#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

#include "cli/ftp_commands.h"
#include "cli/local_commands.h"
#include "cli/share_commands.h"
#include "support/exceptions.h"

namespace {

constexpr const char* kVersion = "pelicor 0.1.0";

int Fail(const std::string& message) {
  std::cerr << "pelicor: " << message << '\n';
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Oracle SQL trace files to TKPROF-style reports and XML documents", "pelicor");
  app.set_version_flag("--version", kVersion);
  app.require_subcommand(1);
  cli::AddLocalCommands(app);
  cli::AddShareCommands(app);
  cli::AddFtpCommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  } catch (const exceptions::ExceptionBase& e) {
    return Fail(e.Message());
  } catch (const std::exception& e) {
    return Fail(e.what());
  }
  return 0;
}
