// An OpenSSL BIO over a socket of the TCP line layer. Each read waits for the socket by the
// deadline of the call under way, so a server that stops in the middle of a TLS record (or of
// the handshake) costs no more than the time-out; a read that times out asks OpenSSL to retry,
// and the channel then reports the time-out. Sends never raise SIGPIPE (os::Send), which
// OpenSSL's own socket BIO would on a connection the server has closed.
#ifndef PELICOR_TRANSPORT_TLS_SOCKET_BIO_H_
#define PELICOR_TRANSPORT_TLS_SOCKET_BIO_H_

#include <openssl/bio.h>

#include "support/os/socket.h"
#include "transport/tcp/deadline.h"

namespace transport::tls {

// What a socket BIO reads and writes by, and how its last read ended. Owned by the channel,
// which outlives its BIO.
struct SocketLink {
  os::SocketHandle socket = os::kNoSocket;
  Deadline deadline;       // of the call under way
  bool timed_out = false;  // a read found nothing by the deadline
  bool cancelled = false;  // a wait or receive was interrupted
};

// A new BIO over `link`; null when OpenSSL has no memory left.
BIO* NewSocketBio(SocketLink* link);

}  // namespace transport::tls

#endif  // PELICOR_TRANSPORT_TLS_SOCKET_BIO_H_
