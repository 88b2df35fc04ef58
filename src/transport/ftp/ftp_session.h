// The state of one FTP session and the process-wide list that finds the calling thread's
// session. Internal to the client.
#ifndef PELICOR_TRANSPORT_FTP_FTP_SESSION_H_
#define PELICOR_TRANSPORT_FTP_FTP_SESSION_H_

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "transport/ftp/command_table.h"
#include "transport/ftp/ftp_client.h"
#include "transport/tcp/tcp.h"

namespace transport {

struct FtpSession {
  // The transfer loop's block: 4096 bytes in the original client; larger blocks keep a
  // download from being bound by system calls (one poll, one recv, one write per block).
  static constexpr std::size_t kBlockSize = 64 * 1024;
  static constexpr std::size_t kReplySize = 2048;

  std::thread::id owner;
  FtpNotify notify;  // of the running asynchronous call
  os::FileHandle local_file = os::kNoFile;
  std::uint32_t blocks = 0;
  bool aborted = false;
  std::array<char, kBlockSize> data{};
  bool progress = false;
  std::uint64_t transferred = 0;
  std::uint64_t expected = 0;
  bool asynchronous = true;
  Socket control = kNoSocket;
  Socket data_socket = kNoSocket;
  Socket listener = kNoSocket;  // active mode, between PORT and the server's connect
  char type = kFtpTypeAscii;
  bool verbose = false;
  FtpDataMode data_mode = FtpDataMode::kActive;
  bool epsv_refused = false;  // the server answered EPSV with 500/502 once: ask PASV only
  std::uint16_t port = 21;
  int timeout_s = 30;
  // Bounds the operation under way: its replies, its data connection and its transfer.
  Deadline deadline;
  // The last receive on the data connection timed out: its final reply is not waited for.
  bool data_stalled = false;
  // FTP over TLS: asked for, with its trust; the host the control connection was made to
  // (what the certificate must name); PBSZ and PROT accepted on this connection; why the last
  // handshake failed.
  bool tls = false;
  TlsOptions tls_options;
  std::string host;
  bool data_protected = false;
  std::string tls_failure;
  std::array<char, kReplySize> reply{};
  std::deque<std::function<void()>> posted;  // asynchronous work, run by FtpProcessEvents
};

// Sessions by owning thread. Thread-safe; a session itself is touched only by its owner.
class SessionRegistry {
 public:
  static SessionRegistry& Instance();
  // The calling thread's session, or null.
  FtpSession* Find();
  // Creates the calling thread's session; null when it already has one.
  FtpSession* Create();
  void Remove();
  // Exchanges the calling thread's session with *slot; either may be empty.
  void Swap(FtpSessionPtr* slot);
  // True when another thread has a session too (transfers then pause more often).
  bool HasNeighbour();

 private:
  std::mutex mutex_;
  std::vector<FtpSessionPtr> sessions_;
};

// Starts the deadline of a new operation: the session's time-out from now.
void StartOperation(FtpSession& session);
// Closes the session's sockets and local file.
void CloseEverything(FtpSession& session);

// Shared by the parts of the client.
void CloseLocalFile(FtpSession& session);
// Sends a row's command (when it has one), reads the reply and maps it.
int RunCommand(FtpSession& session, FtpCommand command, const char* argument);
// Reads one reply into the session's reply buffer: its code, 0 when it starts with no
// number, -1 when none came.
int ReadReply(FtpSession& session);
// Sends one command line: 0, or 2005.
int SendLine(FtpSession& session, const std::string& line, bool urgent = false);
int SetType(FtpSession& session, char type);
int Restart(FtpSession& session, std::int64_t offset);
int OpenDataConnection(FtpSession& session, const std::string& command, const char* local,
                       int file_action, char type, std::int64_t offset);
int TransferLoop(FtpSession& session);
// FTP over TLS, when the session asks for it (each is kFtpOk otherwise): AUTH TLS and the
// handshake on the control connection; PBSZ and PROT before the first data connection; the
// handshake on a data connection once the server has answered its command.
int SecureControl(FtpSession& session);
int ProtectData(FtpSession& session);
int SecureData(FtpSession& session);
int AbortAction(FtpSession& session, bool drain, bool notify, int debug_position);
// Runs the transfer now, or posts it when the session is asynchronous and has a callback.
int RunOrPostTransfer(FtpSession& session);
void Notify(FtpSession& session, FtpEvent event, std::int64_t value);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_FTP_SESSION_H_
