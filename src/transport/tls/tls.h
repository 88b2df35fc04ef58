// The client side of TLS on a connected socket of the TCP line layer, for FTP over TLS
// (RFC 4217): once a socket is secured, TcpRecv, TcpSend, TcpRecvUntilStr and the line
// protocol read and write it through TLS, and TcpClose ends the TLS session with the socket.
// Functions return a TcpStatus and never throw. In a build without OpenSSL (the Windows
// build) TlsAvailable is false and securing fails with a message that says so.
#ifndef PELICOR_TRANSPORT_TLS_TLS_H_
#define PELICOR_TRANSPORT_TLS_TLS_H_

#include <string>

#include "transport/tcp/tcp.h"

namespace transport {

struct TlsOptions {
  // The PEM file of the certificate authorities to trust; empty: the system's trust store.
  std::string ca_file;
  // False accepts any certificate (a test server's self-signed one): the connection is still
  // encrypted, but anyone in the path could pose as the server.
  bool verify = true;
};

// True when this build speaks TLS.
bool TlsAvailable();

// Makes the connected `socket` a TLS 1.2 (or later) client connection to `host`, the name or
// numeric address the connection was made to. The server's certificate must chain to the trust
// of `options` and name `host` (a DNS name, or an IP address for a numeric host); a name is
// also sent as SNI. The handshake must end by `deadline`. kTcpSuccess, or a negative status
// with *why saying what failed, in OpenSSL's words where it has them:
//   certificate verify failed: self-signed certificate
//   certificate verify failed: hostname mismatch
int TlsStartClient(Socket socket, const std::string& host, const TlsOptions& options,
                   const Deadline& deadline, std::string* why);

// As TlsStartClient, for another connection to the server that `first` is secured with (an FTP
// data connection): the same trust and host, and `first`'s TLS session resumed, as servers
// that tie data connections to their control connection demand (vsftpd's require_ssl_reuse).
int TlsStartClientAlongside(Socket socket, Socket first, const Deadline& deadline,
                            std::string* why);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TLS_TLS_H_
