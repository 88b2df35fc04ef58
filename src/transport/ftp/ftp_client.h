// The FTP command client: a flat function interface over one FTP session per calling thread.
// FtpInit creates the calling thread's session, FtpRelease ends it; every other function
// works on the caller's session and returns a result code of ftp_codes.h (0 is success;
// 1002 without FtpInit, 1003 when a function that talks to the server finds no connection).
// No function throws. Sessions of different threads are independent and may run at once;
// a session must be used only from the thread that created it.
//
// Synchronous mode runs every transfer inside the call. Asynchronous mode (the mode FtpInit
// starts in) returns from a call that was given a notification callback at once and reports
// through the callback: FtpEvent::kProgress with the bytes so far, FtpEvent::kFinished with
// the result code (-1 after FtpAbort). The reports and the transfers behind them run inside
// FtpProcessEvents, which the owning thread calls from its event loop. A call given no
// callback runs synchronously in either mode.
#ifndef PELICOR_TRANSPORT_FTP_FTP_CLIENT_H_
#define PELICOR_TRANSPORT_FTP_FTP_CLIENT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "support/os/file_handle.h"
#include "transport/ftp/ftp_codes.h"
#include "transport/tls/tls.h"

namespace transport {

enum class FtpEvent { kProgress = 0, kFinished = 1 };
using FtpNotify = std::function<void(FtpEvent event, std::int64_t value)>;

// Transfer types.
constexpr char kFtpTypeAscii = 'A';   // 65
constexpr char kFtpTypeBinary = 'I';  // 73
constexpr char kFtpTypeLocal = 'L';   // sent as "TYPE L 8"
// Store actions of FtpOpenDataConnection: 65 "STOR", 87 "APPE", anything else "RETR".
constexpr int kFtpActionStore = 65;
constexpr int kFtpActionAppend = 87;
constexpr int kFtpActionRetrieve = 223;

int FtpInit();
int FtpRelease();

// A session taken out of its thread, so that an object can own it: FtpSwapSession exchanges
// the calling thread's session with *slot (either may be empty). An owner swaps its session
// in for the calls it makes and out again afterwards, so several sessions can live on one
// thread. Destroying a held session closes its connections.
struct FtpSession;
struct FtpSessionDeleter {
  void operator()(FtpSession* session) const;
};
using FtpSessionPtr = std::unique_ptr<FtpSession, FtpSessionDeleter>;
void FtpSwapSession(FtpSessionPtr* slot);

// How data connections are made. Passive asks EPSV (RFC 2428), then PASV when the server
// refuses it (500/502); over IPv6 only EPSV. Passive-then-active falls back to PORT (EPRT
// over IPv6) when the server refuses both. Active announces a listener with PORT/EPRT and
// takes a connection only from the server's address.
enum class FtpDataMode { kActive, kPassive, kPassiveThenActive };

int FtpSetSynchronousMode();
int FtpSetAsynchronousMode();
// Verbose: every command and reply line is also written to the trace sink (off at start).
int FtpSetVerboseMode(bool on);
// Passive or active data connections (FtpDataMode); active at start.
int FtpSetPassiveMode(bool on);
int FtpSetDataMode(FtpDataMode mode);
// The server port when the host names none (21 at start).
int FtpSetDefaultPort(std::uint16_t port);
// Seconds an operation may take (30 at start; 0 waits without limit): one deadline bounds
// its connect, every reply, the data connection and each stall of a transfer.
int FtpSetDefaultTimeOut(int seconds);

// FTP over TLS (RFC 4217), off at start: FtpLogin then sends "AUTH TLS" after the greeting
// and secures the control connection, checking the server's certificate by `options` against
// the host as FtpLogin names it, before USER and PASS go out. Every data connection is secured
// too (PBSZ 0 and PROT P before the first), resuming the control connection's TLS session.
// A server that refuses (AUTH TLS, PBSZ or PROT) gives 3006, a failed handshake 2010, with
// FtpLastTlsFailure saying why; nothing goes out in clear text after either. 1017 when this
// build has no TLS.
int FtpSetTls(bool on, const TlsOptions& options = TlsOptions());
// Why the last TLS handshake of the session failed, in OpenSSL's words where it has them
// ("certificate verify failed: self-signed certificate"); empty when none did.
std::string FtpLastTlsFailure();

// Connects to `host` ("name", "name:port", "[v6addr]:port"), reads the greeting, secures the
// connection when TLS is on, and sends USER and PASS when given. 1 when the server wants a
// password and none was given.
int FtpLogin(const char* host, const char* user, const char* password,
             const FtpNotify& notify = nullptr);
int FtpSendAccount(const char* account);
int FtpCWD(const char* directory);
int FtpCDUP();
int FtpMKD(const char* directory);
int FtpRMD(const char* directory);
int FtpDeleteFile(const char* name);
int FtpRenameFile(const char* from, const char* to);
// The current remote directory; 3004 when the reply quotes none.
int FtpPWD(std::string* directory);
// The server's reply text to SYST, HELP and HELP topic.
int FtpSyst(std::string* reply);
int FtpHelp(const char* topic, std::string* reply);
int FtpNOOP();
// Sends QUIT; on success both connections are closed.
int FtpQuit();
// Closes the local file, the data connection and the control connection.
int FtpCloseConnection();

// 'A', 'I' or 'L'; nothing is sent when the type is already set.
int FtpSetType(char type);
// Sends "REST offset": 3 on success; an offset below 1 sends nothing and returns 3.
int FtpRestart(std::int64_t offset);
// The size of a remote file by "SIZE" (RFC 3659), asked in binary type: 0 with *size set;
// 3003 when the server does not know the command, 1010 for 550, 2002 without a reply, 3001
// for any other reply.
int FtpSize(const char* remote, std::uint64_t* size);

// Retrieves `remote` into the local file `local` (created or truncated).
int FtpRecvFile(const char* remote, const char* local, char type, bool progress,
                const FtpNotify& notify = nullptr);
// Retrieves `remote` from `offset` on into an open file. The client takes the handle over
// and closes it when the transfer ends or fails.
int FtpRecvFileToHandle(const char* remote, os::FileHandle file, char type, bool progress,
                        std::int64_t offset, const FtpNotify& notify = nullptr);
// Writes the listing of `pattern` (null: the current directory) into `local`: NLST, or LIST
// when `long_listing`.
int FtpDir(const char* pattern, const char* local, bool long_listing,
           const FtpNotify& notify = nullptr);

// Opens a data connection for STOR, APPE or RETR of `remote` (by `action`) from `offset`,
// without a local file; the caller then pulls blocks with FtpRecvThroughDataConnection and
// ends with FtpCloseDataConnection. A data connection still open from an earlier call is
// closed first and its final reply read.
int FtpOpenDataConnection(const char* remote, int action, char type, std::int64_t offset);
// Receives up to *length bytes: 0 with *length set to the count, 4 at the end of the data,
// 2006 on a receive error or time-out, -1 after FtpAbort.
int FtpRecvThroughDataConnection(char* buffer, int* length);
// Closes the data connection and reads the server's final reply: 0 for 226 or 250, 1005
// for 452 or 552, 3001 otherwise (also when none comes). After a receive that timed out the
// reply is not waited for.
int FtpCloseDataConnection();

// Asks the running transfer to stop; it ends with -1.
int FtpAbort();
// The size announced by the last reply when it is a 150 or 125 "(N bytes)" reply, else 0.
std::uint64_t FtpBytesToBeTransferred();
std::uint64_t FtpBytesTransferred();
// The last reply the server sent (its lines joined by "\n"); empty without a session.
std::string FtpLastReply();
// The code of the last reply (its leading number; 0 when it has none).
int FtpLastReplyCode();

// Runs the posted transfers and reports of the asynchronous mode; 0, or 1002.
int FtpProcessEvents();

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_FTP_CLIENT_H_
