// `pelicor report` and `pelicor xml`: jobs on a trace file on this machine.
#ifndef PELICOR_CLI_LOCAL_COMMANDS_H_
#define PELICOR_CLI_LOCAL_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddLocalCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_LOCAL_COMMANDS_H_
