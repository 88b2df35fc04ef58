// `pelicor profile` and `pelicor html`: the response-time profile of a local trace file, on
// the terminal or as a self-contained HTML page.
#ifndef PELICOR_CLI_PROFILE_COMMANDS_H_
#define PELICOR_CLI_PROFILE_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddProfileCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_PROFILE_COMMANDS_H_
