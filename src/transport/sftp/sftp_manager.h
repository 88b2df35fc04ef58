// CSftpManager: the server's trace directory ("udump") reached over SSH's file protocol. It
// lists the trace files, finds the trace file of a server process, copies a file into a local
// directory and streams a file line by line from any offset for the parser (SFTP reads at an
// offset, so nothing before it crosses the network).
//
// Every failure is thrown as exceptions::ExceptionBase with file "SftpManager", class
// "CSftpManager", and a message that names the server and, where there is one, the file.
//
// One object holds at most one connection and one open stream; it is used from one thread at a
// time. Every request to the server waits at most the time-out. The destructor closes what is
// open and never throws. Beyond the service object's 25 methods: the command and the service
// object's Sftp* methods (and so the C ABI) use it.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_MANAGER_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_MANAGER_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "parser/line_source.h"
#include "transport/sftp/sftp_options.h"

namespace transport {

namespace sftp {
class SftpConnection;
class SftpStream;
}  // namespace sftp

// One entry of the trace directory.
struct SftpEntry {
  std::string name;
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // seconds since 1970, UTC
};

class CSftpManager : public parser::LineSource {
 public:
  static constexpr const char* kListingFileName = "SftpTraceFileList.txt";

  CSftpManager();
  CSftpManager(const CSftpManager&) = delete;
  CSftpManager& operator=(const CSftpManager&) = delete;
  ~CSftpManager() override;

  // Server, account, credentials and trace directory; used by the next Init.
  void SetOptions(sftp::SftpOptions options);
  // Where listing files go: `path` followed by the platform separator.
  void SetWorkDir(const std::string& path);
  const std::string& GetWorkDir() const { return work_dir_; }

  // Connects (host key checked), logs on and checks that the trace directory is one. Refuses
  // empty host, user or trace directory before any network traffic.
  void Init();
  // Closes the stream and the connection; Init may follow.
  void Close();
  bool IsInitialised() const { return connection_ != nullptr; }

  // The entries of the trace directory whose names match `pattern` (wildcards * and ?, letters
  // compared without case, as the file share does), directories left out, sorted by name.
  std::vector<SftpEntry> ListFiles(const std::string& pattern);
  // Writes ListFiles(pattern) into the work directory's "SftpTraceFileList.txt", one line each:
  // mode 0 the name, mode 1 the size, the last change in local time and the name:
  //   "     1418700 11/23/2026 19:42 orcl_ora_4711.trc"
  // (the file share's layout, with the whole 64-bit size). Other modes do nothing.
  void GetFileList(std::uint16_t mode, const std::string& pattern);

  // Finds the trace file of server process `pid` with the file share's rule: the names that
  // match "*PID*.trc"; one is taken as it is; of several, the only one holding the zero-padded
  // pid ("12" -> "00012"). Fills `*name` and returns that file's size. A candidate whose name
  // holds '/', '\' or ".." is refused.
  std::uint64_t GetTraceFileNameFromPID(const std::string& pid, std::string* name);

  // The size of `name` in the trace directory now.
  std::uint64_t GetFileSize(const std::string& name);

  // Copies `name` from the trace directory into `directory`: written under a temporary name
  // and renamed once complete, so a failure leaves no part of it (and an older copy stays).
  // `name` must be a plain file name. `progress` hears the bytes copied so far and the file's
  // size when it was opened. Returns the bytes copied.
  using Progress = std::function<void(std::uint64_t done, std::uint64_t size)>;
  std::uint64_t RetrieveFile(const std::string& name, const std::string& directory,
                             const Progress& progress);

  // --- parser::LineSource: a trace file of the trace directory from byte `offset` on --------
  // `name` must be a plain file name, as for RetrieveFile.
  // Lines end in exactly one "\n" (a CR before it stays); a last line without one is not
  // handed out (a trace still being written ends in half a line). Reading fails with an
  // exception when the connection breaks; the end of the file is the end of the lines.
  bool OpenLines(const std::string& name, std::uint64_t offset) override;
  bool ReadNextLine(std::string_view* line) override;
  void CloseLines() override;
  // The size of the file open for lines, as it was when it was opened.
  std::uint64_t OpenedSize() const;

 private:
  sftp::SftpConnection& Connection();
  std::string RemotePath(const std::string& name) const;
  // Throws unless `name` is a plain file name (IsPlainSftpName).
  static void RequirePlainName(const char* method, const std::string& name);

  sftp::SftpOptions options_;
  std::string work_dir_;
  std::unique_ptr<sftp::SftpConnection> connection_;
  std::unique_ptr<sftp::SftpStream> stream_;
};

// True when `name` can be joined to a directory without leaving it: no '/', '\' or "..".
bool IsPlainSftpName(std::string_view name);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_MANAGER_H_
