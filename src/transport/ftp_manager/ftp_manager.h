// CFtpManager: the server's trace directory ("udump") reached over FTP. It logs on and changes
// to the trace directory, lists trace files into "FtpTraceFileList.txt" in the work
// directory, copies files there, streams a file line by line (from an offset) for the parser,
// and finds the trace file of a session by listing and matching names.
//
// Every failure is thrown as exceptions::ExceptionBase with file "FtpManager". Class and
// method texts vary by raise site and several read "FtpManger", "marched", or name another
// operation: hosts match on these texts, so they stay exactly as they are.
//
// An object owns its own FTP client session: several managers may live on one thread (an FTP
// call while another manager's batch stream waits between portions), each call on a manager
// lends its session to the thread for the call's duration. Calls on one manager must not
// overlap. The destructor releases the session and never throws.
#ifndef PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_H_
#define PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "parser/line_source.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_connect_info.h"

namespace transport {

class CFtpManager : public parser::LineSource {
 public:
  static constexpr int kBufferSize = 4096;
  // The listing files written into the work directory.
  static constexpr const char* kListingFileName = "FtpTraceFileList.txt";
  static constexpr const char* kPidListingFileName = "FtpTraceFileListPID.txt";

  // Starts an FTP session of its own; throws "FTP failed to initialize!" when that fails.
  CFtpManager();
  CFtpManager(const CFtpManager&) = delete;
  CFtpManager& operator=(const CFtpManager&) = delete;
  // Releases the FTP session (closing whatever it still has open). A failed release is logged
  // by the exception it raises and otherwise ignored.
  ~CFtpManager() override;

  // --- The operation table, in slot order --------------------------------------------------
  // The block buffer the data stream is read into, and the count of the last receive.
  virtual char* GetBuffer() { return buffer_.data(); }
  virtual int GetBufferLength() const { return buffer_length_; }

  // Copies `remote` in ASCII mode to the work directory under the same name.
  virtual void RetrieveFile(const std::string& remote);
  // Creates the local file (work directory + `remote`) itself, then receives `remote` into it
  // with transfer type `type` ('A' or 'I') from byte `offset` on.
  virtual void RetrieveFile(const std::string& remote, char type, std::uint64_t offset);

  // Logs on and changes to the trace directory. Refuses empty connection data before any
  // network traffic. The logged-on flag is set once the log-on has succeeded, the initialised
  // flag once the directory change has too.
  virtual void Init();
  // Ends the FTP session (QUIT, or closing the connections when QUIT fails). Flags stay set.
  // After a transfer that failed half-way (a stalled or cut-off stream) the connections are
  // closed without QUIT: a server that stopped answering would hold it a whole time-out.
  virtual void Close();

  // Opens a binary data connection that retrieves `remote` from byte `offset`. When the server
  // refuses (a REST it does not take, an offset past the end), the file is opened from its
  // start and the first `offset` bytes are read and dropped.
  virtual void OpenDataStream(const std::string& remote, std::uint64_t offset);
  // Closes the data connection and checks the server's final reply; returns 0. After the
  // stream's end was read through ReadNextLine (which checks that reply itself) it does
  // nothing more.
  virtual int CloseDataStream();
  // The next line of the open data stream, ending in exactly one "\n" (a CR in front of it
  // stays), or null at the end of the data: a last line without a line feed is never handed
  // out. The text stays valid until the next call. Each call starts by asking for blocks of
  // 4096 bytes; a short block makes the next receive of the same call ask for no more than it
  // got. Throws when the data connection fails (reset, time-out) rather than ending.
  virtual const char* ReadLine();

  // Takes host, user, password and trace directory from the record (not the working
  // directory: that comes through SetWorkDir).
  virtual void SetConnectInfo(const FtpConnectInfo& info);
  // Stores the four texts; only a null one is refused ("Invalid FTP connection information!").
  virtual void SetConnectInfo(const char* host, const char* user, const char* password,
                              const char* udump);
  virtual bool IsLoggedOn() const { return logged_on_; }
  // Stores `path` followed by the platform separator, so names can be appended directly.
  virtual void SetWorkDir(const std::string& path);
  virtual const std::string& GetWorkDir() const { return work_dir_; }

  // Writes the listing of `pattern` into the work directory's "FtpTraceFileList.txt": mode 0
  // names only (NLST), mode 1 the server's long form (LIST); any other mode does nothing. A
  // server that refuses patterns (pyftpdlib: 550) lists the whole directory instead and the
  // lines whose names match are kept.
  virtual void GetFileList(std::uint16_t mode, const std::string& pattern);
  // The size of `name` (low 32 bits). With a data stream open: the size announced for that
  // stream (0 when none). Otherwise the server is asked with SIZE; only a server that refuses
  // it gets a data connection opened on `name` to read the size its 150 reply announces, left
  // to the next transfer (or Close) to finish.
  virtual std::uint32_t GetFileSize(const std::string& name);
  // Finds the trace file of a session: lists `session` + "*.trc" (names only) into the work
  // directory's "FtpTraceFileListPID.txt" and takes the listed names that contain `session`;
  // when that finds none, "*" + `session` + "*.trc" (Oracle names its traces
  // "orcl_ora_4242.trc"). One such name is the answer; of several, the only one holding the
  // zero-padded form of `session` ("123" -> "00123"). Fills `*name` and returns that file's
  // size. A listed name that holds '/', '\' or ".." is refused. On failure `*name` may already
  // hold the last candidate seen.
  virtual std::uint32_t GetTraceFileNameFromPID(const std::string& session, std::string* name);
  virtual void SetInitialised(bool initialised) { initialised_ = initialised; }
  virtual bool IsInitialised() const { return initialised_; }

  // --- Beyond the table ----------------------------------------------------------------------
  // How data connections are made; passive first (EPSV, PASV), then active, at start.
  void SetDataMode(FtpDataMode mode);
  // Passive only (true) or active only (false).
  void SetPassiveMode(bool passive);
  // Seconds an operation may wait for the server (30 at start).
  void SetTimeOut(int seconds);
  // FTP over TLS (off at start): Init secures the control connection before the user name and
  // password go out, and every data connection is secured too (FtpSetTls). Throws "FTP over
  // TLS is not available in this build (it was built without OpenSSL)" where it is not.
  void SetTls(bool on, const TlsOptions& options = TlsOptions());
  // Writes the rest of the open data stream, as it arrives, into `local_path` (created or
  // truncated), calling `progress` with the bytes written so far, then checks the server's
  // final reply. Throws when more than `max_bytes` arrive (0: no limit). Returns the bytes
  // written.
  std::uint64_t SaveDataStream(const std::string& local_path,
                               const std::function<void(std::uint64_t)>& progress,
                               std::uint64_t max_bytes = 0);
  // Why the last Init failed (log-on or change of directory), in the client's words: "Can
  // not resolve host adress", or a server's refusal with its reply line. Empty when it did not,
  // and when FTP over TLS failed: that message names the host and the reason itself.
  const std::string& LastFailureReason() const { return failure_reason_; }

  // --- parser::LineSource: the parser's stream forms read through the data stream ----------
  bool OpenLines(const std::string& name, std::uint64_t offset) override;
  // At the end of the data the server's final reply is checked: a stream cut off without it
  // throws ("FTP failed to close Data connection") rather than passing for a whole file.
  bool ReadNextLine(std::string_view* line) override;
  void CloseLines() override;
  // A second, short transfer of `name` from its start, ended by ABOR once `max_bytes` have
  // arrived (unless the whole file has): for a parse whose stream starts past the trace's
  // banner. False when the transfer cannot be opened or a stream is open; nothing is thrown.
  bool ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) override;

 private:
  // Lends the manager's session to the calling thread while it lives; nests.
  class SessionBinding {
   public:
    explicit SessionBinding(CFtpManager& manager);
    ~SessionBinding();
    SessionBinding(const SessionBinding&) = delete;
    SessionBinding& operator=(const SessionBinding&) = delete;

   private:
    CFtpManager& manager_;
  };

  void UnInit();
  // Throws the message of a failed log-on (FtpLogin's `result`), setting the failure reason.
  [[noreturn]] void RaiseLogonFailure(int result);
  void SkipBytes(std::uint64_t count);
  // The listing of `pattern` into `local`; a server that refuses a pattern (500, 501, 550) is
  // asked for the whole directory and the names are matched here. The client's result.
  int ListInto(const std::string& pattern, const std::string& local, bool long_form);
  // The listed names of `pattern` that contain `session`; `none_is_empty` takes a listing
  // refused with 450/550 ("No such file") as one that lists nothing.
  std::vector<std::string> ListCandidates(const std::string& pattern, const std::string& session,
                                          const std::string& listing, bool none_is_empty);
  // Reads the final reply of a stream whose end has been reached.
  void FinishStream();
  // The work directory followed by `name` (just `name` while no work directory is set).
  std::string LocalPath(const std::string& name) const { return work_dir_ + name; }
  // Finishes the data connection a size probe left open, so QUIT is answered at once.
  void FinishSizeProbe();
  // `message`, followed by the host and the reason when `result` is a failure of FTP over TLS:
  //   FTP failed to get remote file listing! (db01:21: Server refuses FTP over TLS (534 ...))
  std::string WithTlsReason(const std::string& message, int result) const;

  std::array<char, kBufferSize> buffer_{};
  int buffer_length_ = kBufferSize;
  std::string pending_;
  std::size_t pending_start_ = 0;  // pending_ before this offset has been handed out
  std::string current_line_;
  std::string host_;
  std::string user_;
  std::string password_;
  std::string udump_;
  std::string work_dir_;
  std::string stream_name_;  // for messages
  bool logged_on_ = false;
  bool initialised_ = false;
  bool data_stream_open_ = false;
  bool size_probe_open_ = false;
  bool stream_finished_ = false;  // ReadNextLine has read the stream's final reply
  bool broken_ = false;           // a transfer failed half-way: the server may answer nothing
  std::string failure_reason_;
  FtpSessionPtr session_;
  int bound_depth_ = 0;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_MANAGER_FTP_MANAGER_H_
