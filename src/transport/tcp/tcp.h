// The TCP line layer: connecting, listening and accepting with a time-out, timed receives,
// whole-buffer sends, and the line protocol of a text control connection (a line sent with
// CR LF, one line read, a possibly multi-line reply read, its numeric code). Every function
// returns an integer status (TcpStatus) and never throws. Any thread may call; each call
// keeps its own state, so threads reading different sockets do not disturb each other. A
// socket secured with TLS (transport/tls/) is read and written through its TLS session by the
// same functions.
//
// Time-outs are in seconds: 0 waits without limit, -1 (TcpRecv only) polls.
// The log handles append a copy of the data to an open file; kNoLog for none.
#ifndef PELICOR_TRANSPORT_TCP_TCP_H_
#define PELICOR_TRANSPORT_TCP_TCP_H_

#include <cstdint>
#include <string_view>

#include "support/os/file_handle.h"
#include "support/os/socket.h"
#include "transport/tcp/deadline.h"
#include "transport/tcp/tcp_trace.h"

namespace transport {

using Socket = os::SocketHandle;
constexpr Socket kNoSocket = os::kNoSocket;
using LogHandle = os::FileHandle;
constexpr LogHandle kNoLog = os::kNoFile;

enum TcpStatus : int {
  kTcpSuccess = 1,
  kTcpClosed = 0,  // the peer closed the connection
  kTcpError = -1,  // socket error or bad argument
  kTcpTimeout = -2,
  kTcpInvalidPointer = -3,
  kTcpUnknownHost = -4,
  kTcpNoSocket = -5,
  kTcpConnectFailed = -6,
  kTcpBindFailed = -8,  // bind or listen failed
  kTcpOverflow = -9,    // the buffer filled before the end marker arrived
  kTcpCancelled = -11,
  kTcpNoMemory = -12,
  kTcpNoPort = -13,  // no service port and port 0
};

// Prepares the socket registry and starts the socket library: 1, or -1.
int TcpInit();
// Closes the sockets the calling thread left registered and stops the socket library: 1.
int TcpCleanup();

// Connects to host (a numeric IPv4/IPv6 address or a name) on the port of `service` (when
// given and known) or *port. On success *socket is the new socket and *port the port used.
// Each address the name resolves to is tried in turn until one answers; all of them share
// `deadline` (-2 when it passes first, -6 when every address refused).
int TcpConnect(Socket* socket, const char* host, const char* service, std::uint16_t* port,
               const Deadline& deadline = Deadline());
// A listening socket on the port of `service` or *port (0: any); *port receives the bound
// port. It binds `bind_host` (a numeric address) when given, otherwise every local address.
int TcpGetListenSocket(Socket* socket, const char* service, std::uint16_t* port, int backlog,
                       const char* bind_host = nullptr);
int TcpAccept(Socket* socket, Socket listener, int timeout_s);
// Accepts by `deadline`. With `only_from`, a connection from any other address is closed
// unread and the wait goes on: a stranger cannot slip in as the expected peer.
int TcpAcceptBy(Socket* socket, Socket listener, const Deadline& deadline,
                const os::Endpoint* only_from = nullptr);
// Flushes (a listener: waits 100 ms), closes and sets *socket to kNoSocket. 1 for kNoSocket.
int TcpClose(Socket* socket);

// Waits for data, then receives up to `size` bytes: the count, 0 when the peer closed, or a
// negative status. Without a buffer (or with size 0) only waits and returns 1 once data waits.
int TcpRecv(Socket socket, char* buffer, int size, int timeout_s, LogHandle log);
int TcpRecvBy(Socket socket, char* buffer, int size, const Deadline& deadline, LogHandle log);
// Sends all `size` bytes (as urgent data when `urgent`): 1 or a negative status.
int TcpSend(Socket socket, const char* buffer, int size, bool urgent, LogHandle log);
// TcpSend whose hex dump shows `shown` in place of the data (a password stays out of traces).
int TcpSendShowing(Socket socket, const char* buffer, int size, bool urgent, LogHandle log,
                   std::string_view shown);
// Reads and discards what waits (normal, then urgent data): 1 when the last read got data,
// 0 when none, -1 on error.
int TcpFlush(Socket socket);
bool TcpIsDataAvail(Socket socket);
bool TcpIsOOBDataAvail(Socket socket);
// The IPv4 address of a dotted address or host name, in network byte order; all ones when
// unknown.
std::uint32_t TcpGetIPAddr(const char* host);
// The value of the leading decimal digits; 0 when there are none.
int TcpAtoi(const char* text);

// Reads until `marker` has arrived, even when it is split across reads: the data in front
// of the marker lands in `buffer` and *size becomes its length; the marker is consumed.
// -9 when *size bytes arrived without the marker (*size then holds what was read).
int TcpRecvUntilStr(Socket socket, char* buffer, int* size, const char* marker, int marker_length,
                    bool case_sensitive, int timeout_s, LogHandle log);
int TcpRecvUntilStrBy(Socket socket, char* buffer, int* size, const char* marker, int marker_length,
                      bool case_sensitive, const Deadline& deadline, LogHandle log);

// Sends text + "\r\n": 1 or a negative status.
int TnSend(Socket socket, const char* text, bool urgent, LogHandle log);
// One line without its CR LF, NUL-terminated (at most size - 1 characters): 1 or the status
// of TcpRecvUntilStr.
int TnReadLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log);
// A reply of one or more lines, joined by "\n": 1; 2 when it overflowed the buffer (its start
// is kept, the rest read and dropped); -2 time-out, 0 closed, -11 cancelled, -1 otherwise.
// A reply that opens with "230-" ends at a line starting "230 " (RFC 959); one time-out
// bounds the whole reply, and a reply that goes on past kMaxReplyBytes is given up (-1).
int TnReadMultiLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log);
int TnReadMultiLineBy(Socket socket, char* buffer, int size, const Deadline& deadline,
                      LogHandle log);
// TnReadMultiLine, then the number the reply starts with; other statuses are passed on.
int TnReadAnswerCode(Socket socket, char* buffer, int size, int timeout_s, LogHandle log);

// The most bytes one reply may take, dropped ones included.
constexpr int kMaxReplyBytes = 64 * 1024;

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_TCP_H_
