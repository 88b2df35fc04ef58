// Where a command's document goes: the file named by -o, or standard output. A file takes its
// name only once it is complete (os::PendingFile): a full disk leaves the previous file as it
// was and no half document.
#ifndef PELICOR_CLI_OUTPUT_H_
#define PELICOR_CLI_OUTPUT_H_

#include <string>

namespace cli {

// Copies the bytes of `source` to `target`, or to standard output when `target` is empty.
// Throws std::runtime_error naming the file that could not be read or written, and why.
void DeliverFile(const std::string& source, const std::string& target);

// As DeliverFile, for a listing an FTP server sent: its CR LF line ends become "\n".
void DeliverListing(const std::string& source, const std::string& target);

// Flushes standard output; throws std::runtime_error with the system's reason when anything
// written to it was lost (a full disk, a closed pipe).
void FinishStandardOutput();

}  // namespace cli

#endif  // PELICOR_CLI_OUTPUT_H_
