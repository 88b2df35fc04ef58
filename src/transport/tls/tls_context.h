// The OpenSSL context of one FTP session: TLS 1.2 or later, and the trust its connections
// check the server's certificate against. The control connection makes it; each data
// connection shares it through the control connection's channel.
#ifndef PELICOR_TRANSPORT_TLS_TLS_CONTEXT_H_
#define PELICOR_TRANSPORT_TLS_TLS_CONTEXT_H_

#include <openssl/ssl.h>

#include <memory>
#include <string>

#include "transport/tls/tls.h"

namespace transport::tls {

class TlsContext {
 public:
  // Null with *why set when OpenSSL has no memory left or the CA file cannot be loaded.
  static std::shared_ptr<TlsContext> Create(const TlsOptions& options, std::string* why);

  SSL_CTX* Get() const { return context_.get(); }

 private:
  struct Free {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  };
  explicit TlsContext(SSL_CTX* context) : context_(context) {}

  std::unique_ptr<SSL_CTX, Free> context_;
};

// OpenSSL's reason for the oldest error on the calling thread's queue ("wrong version number"),
// or `otherwise` when the queue is empty. Empties the queue.
std::string OpenSslReason(const std::string& otherwise);

}  // namespace transport::tls

#endif  // PELICOR_TRANSPORT_TLS_TLS_CONTEXT_H_
