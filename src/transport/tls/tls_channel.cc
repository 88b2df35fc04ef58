#include "transport/tls/tls_channel.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <utility>

#include "transport/tcp/tcp.h"

namespace transport::tls {
namespace {

// The certificate must name the host: its IP addresses for a numeric one, its DNS names (no
// partial wildcards such as "ftp*.example.com") for a name, which also goes out as SNI.
bool NameTheHost(SSL* ssl, const std::string& host) {
  X509_VERIFY_PARAM* check = SSL_get0_param(ssl);
  if (X509_VERIFY_PARAM_set1_ip_asc(check, host.c_str()) == 1) return true;
  X509_VERIFY_PARAM_set_hostflags(check, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  return SSL_set1_host(ssl, host.c_str()) == 1 &&
         SSL_ctrl(ssl, SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name,
                  const_cast<char*>(host.c_str())) == 1;
}

}  // namespace

TlsChannel::TlsChannel(os::SocketHandle socket, std::shared_ptr<TlsContext> context,
                       std::string host)
    : context_(std::move(context)),
      host_(std::move(host)),
      link_(std::make_unique<SocketLink>()),
      ssl_(SSL_new(context_->Get())) {
  link_->socket = socket;
}

std::shared_ptr<TlsChannel> TlsChannel::Create(os::SocketHandle socket,
                                               std::shared_ptr<TlsContext> context,
                                               const std::string& host, std::string* why) {
  ERR_clear_error();
  std::shared_ptr<TlsChannel> channel(new TlsChannel(socket, std::move(context), host));
  SSL* ssl = channel->ssl_.get();
  BIO* bio = ssl != nullptr ? NewSocketBio(channel->link_.get()) : nullptr;
  if (bio == nullptr) {
    *why = "cannot start TLS: " + OpenSslReason("out of memory");
    return nullptr;
  }
  SSL_set_bio(ssl, bio, bio);
  if (!NameTheHost(ssl, host)) {
    *why = "cannot check the certificate against " + host + ": " + OpenSslReason("bad host name");
    return nullptr;
  }
  return channel;
}

void TlsChannel::Begin(const Deadline& deadline) {
  link_->deadline = deadline;
  link_->timed_out = false;
  link_->cancelled = false;
  ERR_clear_error();
}

int TlsChannel::Failed(int error) {
  if (error == SSL_ERROR_ZERO_RETURN) return kTcpClosed;
  if (error == SSL_ERROR_WANT_READ && link_->timed_out) return kTcpTimeout;
  broken_ = true;
  ERR_clear_error();
  return link_->cancelled ? kTcpCancelled : kTcpError;
}

std::string TlsChannel::HandshakeFailure(int error) const {
  if (link_->timed_out) return "the TLS handshake timed out";
  // Without checks (insecure) the result still says what a check would have found.
  const bool checked = (SSL_get_verify_mode(ssl_.get()) & SSL_VERIFY_PEER) != 0;
  const long verified = SSL_get_verify_result(ssl_.get());
  if (checked && verified != X509_V_OK) {
    return std::string("certificate verify failed: ") + X509_verify_cert_error_string(verified);
  }
  const bool ended =
      error == SSL_ERROR_ZERO_RETURN || (error == SSL_ERROR_SYSCALL && ERR_peek_error() == 0);
  if (ended) return "the server closed the connection during the TLS handshake";
  return "TLS handshake failed: " + OpenSslReason("unknown error");
}

int TlsChannel::Handshake(SSL_SESSION* resume, const Deadline& deadline, std::string* why) {
  if (resume != nullptr) SSL_set_session(ssl_.get(), resume);
  Begin(deadline);
  for (;;) {
    const int result = SSL_connect(ssl_.get());
    if (result == 1) return kTcpSuccess;
    const int error = SSL_get_error(ssl_.get(), result);
    if (error == SSL_ERROR_WANT_READ && !link_->timed_out) continue;
    *why = HandshakeFailure(error);
    const int status = Failed(error);
    broken_ = true;
    return status == kTcpClosed ? kTcpError : status;
  }
}

// A read that finds only a record without data (a TLS 1.3 session ticket) goes on waiting.
int TlsChannel::Receive(char* buffer, int size, bool peek, const Deadline& deadline) {
  if (broken_ || buffer == nullptr || size <= 0) return kTcpError;
  Begin(deadline);
  for (;;) {
    const int count =
        peek ? SSL_peek(ssl_.get(), buffer, size) : SSL_read(ssl_.get(), buffer, size);
    if (count > 0) return count;
    const int error = SSL_get_error(ssl_.get(), count);
    if (error == SSL_ERROR_WANT_READ && !link_->timed_out) continue;
    return Failed(error);
  }
}

// Sends wait as long as the system lets them, as plain sends do.
int TlsChannel::Send(const char* buffer, int size) {
  if (broken_) return kTcpError;
  if (size <= 0) return kTcpSuccess;
  Begin(Deadline());
  const int written = SSL_write(ssl_.get(), buffer, size);
  if (written == size) return kTcpSuccess;
  const int status = Failed(SSL_get_error(ssl_.get(), written));
  broken_ = true;
  return status < 0 ? status : kTcpError;
}

// Sends close_notify without waiting for the server's: the socket closes right after.
void TlsChannel::Close() {
  if (broken_ || SSL_is_init_finished(ssl_.get()) != 1) return;
  Begin(Deadline::Now());
  SSL_shutdown(ssl_.get());
  ERR_clear_error();
  broken_ = true;
}

}  // namespace transport::tls
