// Securing sockets: a first connection makes the session's context, later ones to the same
// server share it and resume the first one's TLS session.
#include <memory>
#include <string>

#include "transport/tcp/socket_registry.h"
#include "transport/tls/tls.h"
#include "transport/tls/tls_channel.h"

namespace transport {
namespace {

int Secure(Socket socket, std::shared_ptr<tls::TlsContext> context, const std::string& host,
           SSL_SESSION* resume, const Deadline& deadline, std::string* why) {
  const auto channel = tls::TlsChannel::Create(socket, std::move(context), host, why);
  if (!channel) return kTcpNoMemory;
  const int status = channel->Handshake(resume, deadline, why);
  if (status != kTcpSuccess) return status;
  if (!SocketRegistry::Instance().Attach(socket, channel)) {
    *why = "the socket is not one of the TCP layer's";
    return kTcpError;
  }
  return kTcpSuccess;
}

}  // namespace

bool TlsAvailable() {
  return true;
}

int TlsStartClient(Socket socket, const std::string& host, const TlsOptions& options,
                   const Deadline& deadline, std::string* why) {
  std::shared_ptr<tls::TlsContext> context = tls::TlsContext::Create(options, why);
  if (!context) return kTcpError;
  return Secure(socket, std::move(context), host, nullptr, deadline, why);
}

int TlsStartClientAlongside(Socket socket, Socket first, const Deadline& deadline,
                            std::string* why) {
  const auto channel = SocketRegistry::Instance().ChannelOf(first);
  const auto* secured = dynamic_cast<const tls::TlsChannel*>(channel.get());
  if (secured == nullptr) {
    *why = "the first connection is not secured";
    return kTcpError;
  }
  const tls::SessionPtr session = secured->Session();
  return Secure(socket, secured->Context(), secured->Host(), session.get(), deadline, why);
}

}  // namespace transport
