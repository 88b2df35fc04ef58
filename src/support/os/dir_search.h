// Directory search in the manner of the Windows find-first/find-next interface: a search path is
// a directory, a separator and a name pattern ("D:\udump\*1234*.trc", "/u01/udump/*.trc"), and
// each match comes with its name, size and last-write time in local time.
#ifndef PELICOR_SUPPORT_OS_DIR_SEARCH_H_
#define PELICOR_SUPPORT_OS_DIR_SEARCH_H_

#include <cstdint>
#include <string>
#include <vector>

namespace os {

// A calendar time in the machine's local time zone.
struct LocalTime {
  int year = 0;
  int month = 0;  // 1..12
  int day = 0;    // 1..31
  int hour = 0;
  int minute = 0;
  int second = 0;
};

struct DirEntry {
  std::string name;        // bare name, no directory
  std::uint64_t size = 0;  // full size in bytes; 0 for a directory, as Windows reports it
  LocalTime last_write;    // modification time converted to local time
  // A regular file (following a link): false for a directory, a FIFO, a device or a link that
  // points nowhere.
  bool regular = false;

  // The low 32 bits of the size, which is what the trace listings show.
  std::uint32_t SizeLow32() const { return static_cast<std::uint32_t>(size); }
};

struct DirSearchResult {
  bool started = false;           // false: the search could not start, see `error`
  std::string error;              // the operating system's text for why not
  std::vector<DirEntry> entries;  // the matches, when started
};

// Finds the entries of the directory part of `search_path` whose names match its last part
// (wildcards as in os::WildcardMatch). No directory part means the current directory.
//
// As on Windows, a search that matches nothing does not start: on POSIX a missing directory or
// an empty result gives the text of ENOENT, other failures (no read permission, not a
// directory) the text of their own errno; on Windows the error is FormatMessageA's text for
// GetLastError(). "." and ".." are entries like any other when the pattern matches them.
//
// Order: POSIX sorts the entries by name (byte order) so that every run sees the same order;
// Windows keeps the order in which the file system returns them.
DirSearchResult FindFiles(const std::string& search_path);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_DIR_SEARCH_H_
