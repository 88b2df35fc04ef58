// `pelicor ftp list|find|get|report|xml`: trace files in a dump directory reached over FTP.
// report and xml parse the remote file as it streams in; get copies it byte for byte.
#ifndef PELICOR_CLI_FTP_COMMANDS_H_
#define PELICOR_CLI_FTP_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddFtpCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_FTP_COMMANDS_H_
