// `pelicor db ...`: trace files read through a database connection, by the server-side trace
// package or, where it is missing, through V$DIAG_TRACE_FILE_CONTENTS (Oracle 12.2 and later).
#ifndef PELICOR_CLI_DB_COMMANDS_H_
#define PELICOR_CLI_DB_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace cli {

void AddDbCommands(CLI::App& app);

}  // namespace cli

#endif  // PELICOR_CLI_DB_COMMANDS_H_
