// `pelicor sftp list|find|get|report|xml`: trace files in a dump directory reached over SSH's
// file protocol, with the options and exit codes of `pelicor ftp`. report and xml parse the
// remote file as it streams in; get copies it byte for byte. In a build without libssh (the
// Windows build) the command is there and says it is not available.
#ifndef PELICOR_CLI_SFTP_COMMANDS_H_
#define PELICOR_CLI_SFTP_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddSftpCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_SFTP_COMMANDS_H_
