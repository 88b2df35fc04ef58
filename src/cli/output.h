// Where a command's document goes: the file named by -o, or standard output.
#ifndef PELICOR_CLI_OUTPUT_H_
#define PELICOR_CLI_OUTPUT_H_

#include <string>

namespace cli {

// Copies the bytes of `source` to `target`, or to standard output when `target` is empty.
// Throws std::runtime_error naming the file that could not be read or written.
void DeliverFile(const std::string& source, const std::string& target);

// As DeliverFile, for a listing an FTP server sent: its CR LF line ends become "\n".
void DeliverListing(const std::string& source, const std::string& target);

}  // namespace cli

#endif  // PELICOR_CLI_OUTPUT_H_
