// One TLS client connection on a socket of the TCP line layer: the SSL object, the socket BIO
// it reads and writes through, and the context it shares with the session's other connections.
// The socket registry holds it as the socket's channel from the end of the handshake on, and
// drops it (freeing the SSL object) when the socket is closed.
#ifndef PELICOR_TRANSPORT_TLS_TLS_CHANNEL_H_
#define PELICOR_TRANSPORT_TLS_TLS_CHANNEL_H_

#include <openssl/ssl.h>

#include <memory>
#include <string>

#include "transport/tcp/socket_channel.h"
#include "transport/tls/socket_bio.h"
#include "transport/tls/tls_context.h"

namespace transport::tls {

struct SessionFree {
  void operator()(SSL_SESSION* session) const { SSL_SESSION_free(session); }
};
using SessionPtr = std::unique_ptr<SSL_SESSION, SessionFree>;

class TlsChannel final : public SocketChannel {
 public:
  // A channel for `socket` that will check the server's certificate against `host`; null with
  // *why set when OpenSSL has no memory left.
  static std::shared_ptr<TlsChannel> Create(os::SocketHandle socket,
                                            std::shared_ptr<TlsContext> context,
                                            const std::string& host, std::string* why);

  // Runs the client handshake by `deadline`, resuming `resume` when given: kTcpSuccess, or a
  // status with *why set.
  int Handshake(SSL_SESSION* resume, const Deadline& deadline, std::string* why);
  // The session for another connection to resume; null before the handshake.
  SessionPtr Session() const { return SessionPtr(SSL_get1_session(ssl_.get())); }
  const std::shared_ptr<TlsContext>& Context() const { return context_; }
  const std::string& Host() const { return host_; }

  int Receive(char* buffer, int size, bool peek, const Deadline& deadline) override;
  int Send(const char* buffer, int size) override;
  bool HasPending() const override { return SSL_pending(ssl_.get()) > 0; }
  void Close() override;

 private:
  struct Free {
    void operator()(SSL* ssl) const { SSL_free(ssl); }
  };
  TlsChannel(os::SocketHandle socket, std::shared_ptr<TlsContext> context, std::string host);

  // Starts a call that waits by `deadline`.
  void Begin(const Deadline& deadline);
  // The status of a failed call; after a fatal error the session takes no more calls.
  int Failed(int error);
  // What went wrong in a handshake that failed with `error`.
  std::string HandshakeFailure(int error) const;

  std::shared_ptr<TlsContext> context_;
  std::string host_;
  std::unique_ptr<SocketLink> link_;  // outlives ssl_, whose BIO points at it
  std::unique_ptr<SSL, Free> ssl_;
  bool broken_ = false;  // a fatal error: OpenSSL forbids even a shutdown after one
};

}  // namespace transport::tls

#endif  // PELICOR_TRANSPORT_TLS_TLS_CHANNEL_H_
