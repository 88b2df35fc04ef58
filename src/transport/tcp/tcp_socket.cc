// Opening and closing sockets: connect, listen, accept, close, and the start and end of the
// socket library.
#include <chrono>
#include <thread>
#include <vector>

#include "transport/tcp/socket_registry.h"
#include "transport/tcp/tcp.h"

namespace transport {
namespace {

int FailureStatus() {
  return os::IsCancelled(os::LastSocketError()) ? kTcpCancelled : kTcpError;
}

// The port of a known service, else the caller's port (0 when none was given).
std::uint16_t ChoosePort(const char* service, const std::uint16_t* port) {
  if (service != nullptr) {
    Trace(kTraceCall, "getservbyname ", service, "/tcp");
    if (const std::uint16_t found = os::ServicePort(service)) return found;
  }
  return port != nullptr ? *port : 0;
}

}  // namespace

int TcpInit() {
  SocketRegistry::Instance().Prepare();
  Trace(kTraceCall, "WSAStartup, Winsock 1.1 required");
  return os::StartSockets() ? kTcpSuccess : kTcpError;
}

int TcpCleanup() {
  for (os::SocketHandle socket : SocketRegistry::Instance().TakeThreadSockets()) {
    os::CloseSocket(socket);
  }
  os::StopSockets();
  return kTcpSuccess;
}

int TcpConnect(Socket* socket, const char* host, const char* service, std::uint16_t* port,
               const Deadline& deadline) {
  Trace(kTraceEnter, "TcpConnect. Host ", host, ", service ", service ? service : "none", ", port ",
        port ? *port : 0);
  if (socket == nullptr) return kTcpInvalidPointer;
  *socket = kNoSocket;
  const std::uint16_t chosen = ChoosePort(service, port);
  if (chosen == 0) return kTcpNoPort;
  std::vector<os::Endpoint> addresses;
  if (host == nullptr || !os::ResolveHostAll(host, &addresses)) return kTcpUnknownHost;
  // A name that resolves to IPv6 first may still be reached over IPv4, and the other way.
  int status = kTcpConnectFailed;
  for (os::Endpoint peer : addresses) {
    peer.port = chosen;
    if (deadline.Passed()) return kTcpTimeout;
    const Socket connected = os::OpenStreamSocket(peer.v6);
    if (connected == kNoSocket) {
      status = kTcpNoSocket;
      continue;
    }
    const int outcome = os::ConnectWithin(connected, peer, deadline.RemainingMs());
    if (outcome != 1) {
      Trace(kTraceError, "connect to ", os::AddressText(peer));
      os::CloseSocket(connected);
      status = outcome == 0 ? kTcpTimeout : kTcpConnectFailed;
      continue;
    }
    SocketRegistry::Instance().Add(connected, kSocketConnected);
    if (port != nullptr) *port = peer.port;
    *socket = connected;
    return kTcpSuccess;
  }
  return status;
}

int TcpGetListenSocket(Socket* socket, const char* service, std::uint16_t* port, int backlog,
                       const char* bind_host) {
  Trace(kTraceEnter, "TcpGetListenSocket on service ", service ? service : "none", ", port ",
        port ? *port : 0);
  if (socket == nullptr) return kTcpInvalidPointer;
  *socket = kNoSocket;
  os::Endpoint local;
  if (bind_host != nullptr && !os::ResolveHost(bind_host, &local)) return kTcpUnknownHost;
  local.port = ChoosePort(service, port);
  const Socket listener = os::OpenStreamSocket(local.v6);
  if (listener == kNoSocket) return kTcpNoSocket;
  os::SetReuseAddress(listener);
  os::SetLinger(listener, true, 0);
  Trace(kTraceCall, "bind socket ", listener, " to ", os::AddressText(local));
  Trace(kTraceCall, "listen on socket ", listener, ". ", backlog, " pendind connections");
  os::Endpoint bound;
  if (!os::BindAndListen(listener, local, backlog) || !os::LocalEndpoint(listener, &bound)) {
    Trace(kTraceError, "bind/listen on socket ", listener);
    os::CloseSocket(listener);
    return kTcpBindFailed;
  }
  SocketRegistry::Instance().Add(listener, kSocketListening);
  if (port != nullptr) *port = bound.port;
  *socket = listener;
  return kTcpSuccess;
}

int TcpAccept(Socket* socket, Socket listener, int timeout_s) {
  return TcpAcceptBy(socket, listener, Deadline::After(timeout_s > 0 ? timeout_s : 0));
}

int TcpAcceptBy(Socket* socket, Socket listener, const Deadline& deadline,
                const os::Endpoint* only_from) {
  Trace(kTraceEnter, "TcpAccept. Listen socket ", listener, ", Timeout ",
        deadline.RemainingMs() / 1000);
  if (socket == nullptr) {
    Trace(kTraceInternal, "TcpAccept. invalid pointer");
    return kTcpInvalidPointer;
  }
  *socket = kNoSocket;
  for (;;) {
    const int ready = os::WaitReadable(listener, deadline.RemainingMs());
    if (ready == 0) {
      Trace(kTraceInternal, "select on socket ", listener, ": Timeout");
      return kTcpTimeout;
    }
    if (ready < 0) return FailureStatus();
    Trace(kTraceCall, "accept on listen socket ", listener);
    os::Endpoint peer;
    const Socket accepted = os::Accept(listener, &peer);
    if (accepted == kNoSocket) {
      Trace(kTraceError, "accept on listen socket ", listener);
      return FailureStatus();
    }
    if (only_from != nullptr && !os::SameAddress(peer, *only_from)) {
      Trace(kTraceInternal, "refused a connection from ", os::AddressText(peer));
      os::CloseSocket(accepted);
      continue;
    }
    os::SetLinger(accepted, true, 5);
    SocketRegistry::Instance().Add(accepted, kSocketConnected);
    *socket = accepted;
    return kTcpSuccess;
  }
}

int TcpClose(Socket* socket) {
  if (socket == nullptr) {
    Trace(kTraceInternal, "TcpClose: Invalid pointer");
    return kTcpInvalidPointer;
  }
  if (*socket == kNoSocket) return kTcpSuccess;
  Trace(kTraceEnter, "TcpClose on socket ", *socket);
  if (SocketRegistry::Instance().StateOf(*socket) == kSocketListening) {
    // Gives a peer that is just connecting a moment before the listener goes away.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  } else {
    TcpFlush(*socket);
    // A TLS peer learns that the session ended on purpose (vsftpd holds the 226 of a download
    // until it has our close_notify, or the connection's end).
    if (const auto channel = SocketRegistry::Instance().ChannelOf(*socket)) channel->Close();
  }
  SocketRegistry::Instance().Remove(*socket);
  const bool closed = os::CloseSocket(*socket);
  *socket = kNoSocket;
  if (!closed) {
    Trace(kTraceError, "closesocket");
    return kTcpError;
  }
  return kTcpSuccess;
}

}  // namespace transport
