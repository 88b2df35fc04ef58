// Lines of the file-share listing file, "NfsTraceFileList.txt".
#ifndef PELICOR_TRANSPORT_NFS_NFS_LISTING_H_
#define PELICOR_TRANSPORT_NFS_NFS_LISTING_H_

#include <cstdio>
#include <memory>
#include <string>

#include "support/os/dir_search.h"

namespace transport {

// One listing line, ending in "\n". Short form: the name. Long form:
//   "  1073741824 07/04/2004 13:05 ora_00123.trc"
// the low 32 bits of the size read as a signed 32-bit number, right-aligned in 12 columns
// (wider numbers are not cut), month/day/year hour:minute in local time, the name.
std::string NfsListingLine(const os::DirEntry& entry, bool long_form);

// The listing file, open for writing in text mode (line ends as the platform writes them).
class NfsListingFile {
 public:
  // Truncates or creates `path`; check is_open().
  explicit NfsListingFile(const std::string& path);
  bool is_open() const { return file_ != nullptr; }
  bool Write(const std::string& line);
  // Flushes and closes; false when the data did not reach the file.
  bool Close();

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_NFS_NFS_LISTING_H_
