// `pelicor share ...`: trace files of a dump directory reachable as a local path.
#ifndef PELICOR_CLI_SHARE_COMMANDS_H_
#define PELICOR_CLI_SHARE_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddShareCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_SHARE_COMMANDS_H_
