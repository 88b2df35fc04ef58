// The password of a connection, read from a file rather than the command line (where the process
// list and the shell history would show it).
#ifndef PELICOR_CLI_PASSWORD_FILE_H_
#define PELICOR_CLI_PASSWORD_FILE_H_

#include <string>

namespace cli {

// The first line of the file at `path`, without its line end; raises std::runtime_error naming
// the file when it cannot be read.
std::string ReadPasswordFile(const std::string& path);

}  // namespace cli

#endif  // PELICOR_CLI_PASSWORD_FILE_H_
