// What carries a connection's bytes when they do not go straight through the socket: a TLS
// session on a connected socket (transport/tls/). The TCP line layer hands every receive,
// peek and send of such a socket to its channel, so the line protocol above it reads a secured
// FTP control connection as it reads a plain one. A channel belongs to its socket's entry in
// the socket registry and ends when TcpClose closes the socket.
#ifndef PELICOR_TRANSPORT_TCP_SOCKET_CHANNEL_H_
#define PELICOR_TRANSPORT_TCP_SOCKET_CHANNEL_H_

#include "transport/tcp/deadline.h"

namespace transport {

class SocketChannel {
 public:
  SocketChannel() = default;
  SocketChannel(const SocketChannel&) = delete;
  SocketChannel& operator=(const SocketChannel&) = delete;
  virtual ~SocketChannel() = default;

  // Waits by `deadline` for data, then takes up to `size` bytes (with `peek`, leaves them to
  // be taken again): the count, or a TcpStatus (kTcpClosed when the peer ended the session,
  // kTcpTimeout, kTcpCancelled, kTcpError).
  virtual int Receive(char* buffer, int size, bool peek, const Deadline& deadline) = 0;
  // Sends all `size` bytes: kTcpSuccess, or a negative TcpStatus.
  virtual int Send(const char* buffer, int size) = 0;
  // True when received bytes wait, already decoded, for Receive.
  virtual bool HasPending() const = 0;
  // Ends the session towards the peer (TLS: close_notify) before the socket closes.
  virtual void Close() = 0;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_SOCKET_CHANNEL_H_
