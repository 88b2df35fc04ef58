// `pelicor sftp` in a build without libssh.
#include <stdexcept>

#include "cli/sftp_commands.h"

namespace cli {

void AddSftpCommands(CLI::App& app) {
  CLI::App* sftp = app.add_subcommand("sftp", "Trace files over SFTP (not in this build)");
  sftp->prefix_command();
  sftp->callback([] {
    throw std::runtime_error("SFTP is not available in this build (it was built without libssh)");
  });
}

}  // namespace cli
