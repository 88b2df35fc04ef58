// CNfsManager: the server's trace directory reached as a path on this machine (a mapped drive,
// an NFS or SMB mount), called "NFS" by the service. It lists the trace files of that directory
// into "NfsTraceFileList.txt" in the working directory and finds the trace file of a server
// process id. Copying and parsing the chosen file are the caller's business.
//
// Every failure is thrown as exceptions::ExceptionBase with file "NfsManager"; the class texts
// read "NfsManger" and the lookup's last three failures name GetTraceFileList as their class:
// hosts match on these texts, so they stay as they are.
//
// One object serves one caller at a time; it holds no open resource between calls.
#ifndef PELICOR_TRANSPORT_NFS_NFS_MANAGER_H_
#define PELICOR_TRANSPORT_NFS_NFS_MANAGER_H_

#include <cstdint>
#include <string>
#include <vector>

#include "support/os/dir_search.h"
#include "transport/nfs/nfs_connect_info.h"

namespace transport {

class CNfsManager {
 public:
  // The name of the listing file written into the working directory.
  static constexpr const char* kListingFileName = "NfsTraceFileList.txt";

  CNfsManager() = default;
  CNfsManager(const CNfsManager&) = delete;
  CNfsManager& operator=(const CNfsManager&) = delete;
  virtual ~CNfsManager() = default;

  // Takes the trace directory path from the connection record.
  virtual void Init(const NfsConnectInfo& info);

  // Stores `path` as the trace directory path. Only a null path fails ("NFS qualified trace path
  // is empty!"); an empty text is stored, and the next listing or lookup fails on it.
  virtual void SetConnectInfo(const char* path);

  // Writes the entries of the trace directory that match `pattern` ("*.trc") into the listing
  // file, one line each: style 0 gives the name alone, any other style the line
  //   "  1073741824 07/04/2004 13:05 ora_00123.trc"
  // ("%12ld %s %s": the low 32 bits of the size as a signed 32-bit number, so files of 2 GiB and
  // more show a wrong or negative size; the last-write time in local time; the name).
  // The file is truncated first; when the search cannot start it is left empty and the
  // system's error text is thrown. Lines end the platform's way.
  virtual void GetTraceFileList(std::uint16_t list_style, const std::string& pattern);

  // Turns the trace directory path into a search pattern: `path`, a separator, "*.trc". The
  // operations of this class append their own pattern, so they expect a plain directory.
  virtual void SetTraceSearchPath(const std::string& path);

  // The working directory followed by the platform separator ('/' or '\'), so that names can be
  // appended directly.
  virtual void SetLocalDirectory(const std::string& path);

  virtual const std::string& GetTracePath() const { return trace_path_; }
  virtual const std::string& GetLocalDirectory() const { return local_directory_; }

  // Finds the trace file of server process `pid` among the names that contain `pid` and end in
  // ".trc". One such file is taken as it is. With several (pid 12 finds ora_12.trc and
  // ora_123.trc) the one whose name contains the zero-padded pid ("00012") is taken, and none
  // or more than one such name fails.
  //
  // Fills `*file_name` with the bare name and returns a size meant as the offset from which
  // the session's new trace lines start: the low 32 bits of the file's size. When several
  // candidates were resolved, the size is the one at the position of the match count among
  // the candidates, that is the FIRST candidate's size for the (only) match, not necessarily
  // the chosen file's. Callers rely on this pairing; do not "fix" it.
  //
  // On failure `*file_name` may already hold the last name seen. A pid of more than five
  // characters fails only when candidates have to be resolved.
  std::uint32_t GetTraceFileNameFromPID(const std::string& pid, std::string* file_name);

  // The command's lookup: the same choice and failures as GetTraceFileNameFromPID, but only
  // regular files are candidates (directories, FIFOs and links that point nowhere are passed
  // over), and the size is the chosen file's own, in full.
  struct FoundTraceFile {
    std::string name;
    std::uint64_t size = 0;
  };
  FoundTraceFile FindTraceFileOfPID(const std::string& pid);

 private:
  // The entries of the trace directory that match "*<pid>*.trc"; throws when none can be had.
  std::vector<os::DirEntry> Candidates(const std::string& pid) const;

  std::string trace_path_;
  std::string local_directory_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_NFS_NFS_MANAGER_H_
