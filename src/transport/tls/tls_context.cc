#include "transport/tls/tls_context.h"

#include <openssl/err.h>

#include <string>

namespace transport::tls {
namespace {

// The CA file alone, or the system's store (/etc/ssl/certs, or what OpenSSL was built with).
bool LoadTrust(SSL_CTX* context, const TlsOptions& options, std::string* why) {
  if (options.ca_file.empty()) {
    if (SSL_CTX_set_default_verify_paths(context) == 1) return true;
    *why = "cannot load the system's trusted certificates: " + OpenSslReason("unknown error");
    return false;
  }
  if (SSL_CTX_load_verify_locations(context, options.ca_file.c_str(), nullptr) == 1) return true;
  *why = "cannot load the CA file " + options.ca_file + ": " + OpenSslReason("unknown error");
  return false;
}

}  // namespace

// The text's last field: "error:80000002:system library::No such file or directory" (a
// system error, which ERR_reason_error_string leaves out) or "error:0A00010B:SSL
// routines::wrong version number".
std::string OpenSslReason(const std::string& otherwise) {
  const unsigned long error = ERR_get_error();
  ERR_clear_error();
  if (error == 0) return otherwise;
  char text[256] = {};
  ERR_error_string_n(error, text, sizeof text);
  const std::string whole(text);
  const std::string reason = whole.substr(whole.rfind(':') + 1);
  return reason.empty() ? otherwise : reason;
}

std::shared_ptr<TlsContext> TlsContext::Create(const TlsOptions& options, std::string* why) {
  ERR_clear_error();
  std::shared_ptr<TlsContext> made(new TlsContext(SSL_CTX_new(TLS_client_method())));
  SSL_CTX* context = made->Get();
  if (context == nullptr) {
    *why = "cannot start TLS: " + OpenSslReason("out of memory");
    return nullptr;
  }
  SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
  // A server that ends a data connection without close_notify (it simply closes) has still
  // sent the whole file: the 226 on the secured control connection is what says so.
  SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
#ifdef SSL_OP_IGNORE_UNEXPECTED_EOF  // OpenSSL 3; 1.1.1 takes such an end as the end anyway
  SSL_CTX_set_options(context, SSL_OP_IGNORE_UNEXPECTED_EOF);
#endif
  SSL_CTX_set_verify(context, options.verify ? SSL_VERIFY_PEER : SSL_VERIFY_NONE, nullptr);
  if (options.verify && !LoadTrust(context, options, why)) return nullptr;
  return made;
}

}  // namespace transport::tls
