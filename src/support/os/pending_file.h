// A file that appears under its name only once it is complete: it is written under a temporary
// name beside its target ("trace.xml.pelicor-1a2b3c4d.tmp") and renamed over the target when
// committed. A failure half-way (a full disk, an exception, a killed transfer) leaves no half
// file and keeps whatever the target held before; nothing but the temporary file is ever
// removed. Renaming replaces a symbolic link at the target, never the file it points to.
//
// A target that exists and is neither a regular file nor a directory (a device such as
// /dev/stdout or /dev/null, a FIFO) cannot be replaced that way and is written directly.
// No call throws; one object serves one thread.
#ifndef PELICOR_SUPPORT_OS_PENDING_FILE_H_
#define PELICOR_SUPPORT_OS_PENDING_FILE_H_

#include <cstddef>
#include <string>

#include "support/os/file_handle.h"

namespace os {

class PendingFile {
 public:
  PendingFile() = default;
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  // Discards a file that was not committed.
  ~PendingFile();

  // Creates the temporary file for `target` (discarding one this object had). False, with the
  // system's reason in *error, when it cannot be made; a directory as target is refused.
  bool Create(const std::string& target, std::string* error);
  bool is_open() const { return handle_ != kNoFile; }
  // Where the bytes go until Commit(): the temporary file (or the target written directly).
  const std::string& path() const { return path_; }
  const std::string& target() const { return target_; }

  // Writes every byte; false, with the reason in *error, when not.
  bool Write(const char* data, std::size_t size, std::string* error);
  // Hands the open handle over to a caller who writes and closes it itself; Commit() then only
  // renames.
  FileHandle ReleaseHandle();
  // Closes the file and renames it over the target. False, with the reason, when the close or
  // the rename fails; the temporary file is removed then.
  bool Commit(std::string* error);
  // Closes and removes the temporary file now (harmless when there is none).
  void Discard();

 private:
  std::string target_;
  std::string path_;
  FileHandle handle_ = kNoFile;
  bool pending_ = false;  // path_ is a temporary file of ours, not yet renamed
};

// Empty when `path` is a regular file this process can open for reading, else the reason: the
// system's text ("No such file or directory", "Permission denied", "Is a directory") or "not a
// regular file" for a FIFO, a device or a socket. Opening never waits (a FIFO with no writer
// is refused at once).
std::string RegularFileProblem(const std::string& path);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_PENDING_FILE_H_
