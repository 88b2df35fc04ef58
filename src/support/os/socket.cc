#include "support/os/socket.h"

#include <cstring>

#ifdef _WIN32
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif
// winsock2.h must come before windows.h.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <windows.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace os {
namespace {

#ifdef _WIN32
using Native = SOCKET;
using Length = int;
Native ToNative(SocketHandle socket) {
  return static_cast<Native>(socket);
}
SocketHandle FromNative(Native socket) {
  return socket == INVALID_SOCKET ? kNoSocket : static_cast<SocketHandle>(socket);
}
#else
using Native = int;
using Length = socklen_t;
Native ToNative(SocketHandle socket) {
  return static_cast<Native>(socket);
}
SocketHandle FromNative(Native socket) {
  return socket < 0 ? kNoSocket : socket;
}
#endif

// Fills a sockaddr for an endpoint; returns its length.
Length ToSockaddr(const Endpoint& endpoint, sockaddr_storage* storage) {
  std::memset(storage, 0, sizeof *storage);
  if (endpoint.v6) {
    auto* in6 = reinterpret_cast<sockaddr_in6*>(storage);
    in6->sin6_family = AF_INET6;
    in6->sin6_port = htons(endpoint.port);
    std::memcpy(&in6->sin6_addr, endpoint.address, 16);
    return static_cast<Length>(sizeof *in6);
  }
  auto* in4 = reinterpret_cast<sockaddr_in*>(storage);
  in4->sin_family = AF_INET;
  in4->sin_port = htons(endpoint.port);
  std::memcpy(&in4->sin_addr, endpoint.address, 4);
  return static_cast<Length>(sizeof *in4);
}

bool FromSockaddr(const sockaddr* address, Endpoint* out) {
  *out = Endpoint{};
  if (address->sa_family == AF_INET6) {
    const auto* in6 = reinterpret_cast<const sockaddr_in6*>(address);
    out->v6 = true;
    out->port = ntohs(in6->sin6_port);
    std::memcpy(out->address, &in6->sin6_addr, 16);
    return true;
  }
  if (address->sa_family != AF_INET) return false;
  const auto* in4 = reinterpret_cast<const sockaddr_in*>(address);
  out->port = ntohs(in4->sin_port);
  std::memcpy(out->address, &in4->sin_addr, 4);
  return true;
}

template <typename Query>
bool QueryEndpoint(Query query, SocketHandle socket, Endpoint* out) {
  sockaddr_storage storage{};
  Length length = sizeof storage;
  if (query(ToNative(socket), reinterpret_cast<sockaddr*>(&storage), &length) != 0) return false;
  return FromSockaddr(reinterpret_cast<sockaddr*>(&storage), out);
}

int SocketFlags(int flags) {
  int native = 0;
  if (flags & kRecvPeek) native |= MSG_PEEK;
  if (flags & kRecvUrgent) native |= MSG_OOB;
  return native;
}

}  // namespace

bool ResolveHostAll(const std::string& host, std::vector<Endpoint>* out) {
  out->clear();
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (host.empty() || getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return false;
  for (addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
    Endpoint endpoint;
    if (FromSockaddr(entry->ai_addr, &endpoint)) out->push_back(endpoint);
  }
  freeaddrinfo(found);
  return !out->empty();
}

bool ResolveHost(const std::string& host, Endpoint* out) {
  std::vector<Endpoint> all;
  if (!ResolveHostAll(host, &all)) return false;
  *out = all.front();
  return true;
}

bool SameAddress(const Endpoint& a, const Endpoint& b) {
  // ::ffff:a.b.c.d is the IPv4 address a.b.c.d seen through an IPv6 socket.
  static const std::uint8_t kMapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
  const auto v4 = [](const Endpoint& e) -> const std::uint8_t* {
    if (!e.v6) return e.address;
    return std::memcmp(e.address, kMapped, sizeof kMapped) == 0 ? e.address + 12 : nullptr;
  };
  const std::uint8_t* a4 = v4(a);
  const std::uint8_t* b4 = v4(b);
  if (a4 != nullptr || b4 != nullptr) {
    return a4 != nullptr && b4 != nullptr && std::memcmp(a4, b4, 4) == 0;
  }
  return std::memcmp(a.address, b.address, 16) == 0;
}

std::uint16_t ServicePort(const char* service) {
  const servent* entry = getservbyname(service, "tcp");
  return entry == nullptr ? 0 : ntohs(static_cast<std::uint16_t>(entry->s_port));
}

std::string AddressText(const Endpoint& endpoint) {
  char text[INET6_ADDRSTRLEN] = {};
  if (inet_ntop(endpoint.v6 ? AF_INET6 : AF_INET, endpoint.address, text, sizeof text) == nullptr) {
    return std::string();
  }
  return text;
}

bool Connect(SocketHandle socket, const Endpoint& peer) {
  sockaddr_storage storage{};
  const Length length = ToSockaddr(peer, &storage);
  return connect(ToNative(socket), reinterpret_cast<sockaddr*>(&storage), length) == 0;
}

bool BindAndListen(SocketHandle socket, const Endpoint& local, int backlog) {
  sockaddr_storage storage{};
  const Length length = ToSockaddr(local, &storage);
  if (bind(ToNative(socket), reinterpret_cast<sockaddr*>(&storage), length) != 0) return false;
  return listen(ToNative(socket), backlog) == 0;
}

SocketHandle Accept(SocketHandle listener, Endpoint* peer) {
  sockaddr_storage storage{};
  Length length = sizeof storage;
  const SocketHandle accepted =
      FromNative(accept(ToNative(listener), reinterpret_cast<sockaddr*>(&storage), &length));
  if (accepted != kNoSocket && peer != nullptr &&
      !FromSockaddr(reinterpret_cast<sockaddr*>(&storage), peer)) {
    *peer = Endpoint{};
  }
  return accepted;
}

bool LocalEndpoint(SocketHandle socket, Endpoint* out) {
  return QueryEndpoint(getsockname, socket, out);
}

bool PeerEndpoint(SocketHandle socket, Endpoint* out) {
  return QueryEndpoint(getpeername, socket, out);
}

bool SetReuseAddress(SocketHandle socket) {
  int on = 1;
  return setsockopt(ToNative(socket), SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<char*>(&on),
                    sizeof on) == 0;
}

bool SetLinger(SocketHandle socket, bool on, int seconds) {
  linger value{};
  value.l_onoff = on ? 1 : 0;
  value.l_linger = static_cast<decltype(value.l_linger)>(seconds);
  return setsockopt(ToNative(socket), SOL_SOCKET, SO_LINGER, reinterpret_cast<char*>(&value),
                    sizeof value) == 0;
}

std::ptrdiff_t Receive(SocketHandle socket, char* buffer, std::size_t size, int flags) {
#ifdef _WIN32
  const int count = static_cast<int>(size > 0x7fffffff ? 0x7fffffff : size);
#else
  const std::size_t count = size;
#endif
  return static_cast<std::ptrdiff_t>(recv(ToNative(socket), buffer, count, SocketFlags(flags)));
}

#ifdef _WIN32

bool StartSockets() {
  WSADATA data{};
  return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}
void StopSockets() {
  WSACleanup();
}
int LastSocketError() {
  return WSAGetLastError();
}
bool IsCancelled(int error) {
  return error == WSAEINTR;
}

SocketHandle OpenStreamSocket(bool v6) {
  const SOCKET native = socket(v6 ? AF_INET6 : AF_INET, SOCK_STREAM, IPPROTO_TCP);
  if (v6 && native != INVALID_SOCKET) {
    // Windows makes IPv6 sockets v6-only, so "[::ffff:127.0.0.1]" (an IPv4 server reached
    // through an IPv4-mapped address, as Linux allows) would not connect.
    DWORD v6_only = 0;
    setsockopt(native, IPPROTO_IPV6, IPV6_V6ONLY, reinterpret_cast<const char*>(&v6_only),
               sizeof v6_only);
  }
  return FromNative(native);
}

bool CloseSocket(SocketHandle socket) {
  return closesocket(ToNative(socket)) == 0;
}

bool ShutdownSend(SocketHandle socket) {
  return shutdown(ToNative(socket), SD_SEND) == 0;
}

int WaitReadable(SocketHandle socket, int timeout_ms) {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(ToNative(socket), &readable);
  timeval limit{timeout_ms / 1000, (timeout_ms % 1000) * 1000};
  const int ready = select(0, &readable, nullptr, nullptr, timeout_ms < 0 ? nullptr : &limit);
  return ready < 0 ? -1 : (ready > 0 ? 1 : 0);
}

std::ptrdiff_t Send(SocketHandle socket, const char* buffer, std::size_t size, bool urgent) {
  const int count = static_cast<int>(size > 0x7fffffff ? 0x7fffffff : size);
  return send(ToNative(socket), buffer, count, urgent ? MSG_OOB : 0);
}

long BytesAvailable(SocketHandle socket) {
  u_long count = 0;
  if (ioctlsocket(ToNative(socket), FIONREAD, &count) != 0) return -1;
  return static_cast<long>(count);
}

// Windows answers the at-mark query with FALSE while urgent data waits.
bool UrgentDataPending(SocketHandle socket) {
  u_long at_mark = 1;
  return ioctlsocket(ToNative(socket), SIOCATMARK, &at_mark) == 0 && at_mark == 0;
}

long CurrentThreadNumber() {
  return static_cast<long>(GetCurrentThreadId());
}

int ConnectWithin(SocketHandle socket, const Endpoint& peer, int timeout_ms) {
  if (timeout_ms < 0) return Connect(socket, peer) ? 1 : -1;
  const Native native = ToNative(socket);
  u_long non_blocking = 1;
  if (ioctlsocket(native, FIONBIO, &non_blocking) != 0) return -1;
  sockaddr_storage storage{};
  const Length length = ToSockaddr(peer, &storage);
  int result = 1;
  if (connect(native, reinterpret_cast<sockaddr*>(&storage), length) != 0) {
    result = -1;
    if (WSAGetLastError() == WSAEWOULDBLOCK) {
      fd_set writable;
      fd_set failed;
      FD_ZERO(&writable);
      FD_ZERO(&failed);
      FD_SET(native, &writable);
      FD_SET(native, &failed);
      timeval limit{timeout_ms / 1000, (timeout_ms % 1000) * 1000};
      const int ready = select(0, nullptr, &writable, &failed, &limit);
      result = ready == 0 ? 0 : (ready > 0 && FD_ISSET(native, &writable) ? 1 : -1);
    }
  }
  u_long blocking = 0;
  ioctlsocket(native, FIONBIO, &blocking);
  return result;
}

#else

bool StartSockets() {
  return true;
}
void StopSockets() {}
int LastSocketError() {
  return errno;
}
bool IsCancelled(int error) {
  return error == EINTR;
}

SocketHandle OpenStreamSocket(bool v6) {
  // Close on exec: a server started by the same process must not inherit our connections.
  return FromNative(socket(v6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

bool CloseSocket(SocketHandle socket) {
  return close(ToNative(socket)) == 0;
}

bool ShutdownSend(SocketHandle socket) {
  return shutdown(ToNative(socket), SHUT_WR) == 0;
}

int WaitReadable(SocketHandle socket, int timeout_ms) {
  pollfd entry{ToNative(socket), POLLIN | POLLPRI, 0};
  const int ready = poll(&entry, 1, timeout_ms);
  return ready < 0 ? -1 : (ready > 0 ? 1 : 0);
}

std::ptrdiff_t Send(SocketHandle socket, const char* buffer, std::size_t size, bool urgent) {
  return send(ToNative(socket), buffer, size, MSG_NOSIGNAL | (urgent ? MSG_OOB : 0));
}

long BytesAvailable(SocketHandle socket) {
  int count = 0;
  if (ioctl(ToNative(socket), FIONREAD, &count) != 0) return -1;
  return count;
}

// Without SO_OOBINLINE the urgent byte is readable only with MSG_OOB; peeking at it without
// waiting tells whether one is there.
bool UrgentDataPending(SocketHandle socket) {
  char byte = 0;
  return recv(ToNative(socket), &byte, 1, MSG_OOB | MSG_PEEK | MSG_DONTWAIT) == 1;
}

long CurrentThreadNumber() {
  return static_cast<long>(syscall(SYS_gettid));
}

// A non-blocking connect waited for with poll: a peer that drops our SYN (a full backlog, a
// filter) would otherwise hold the call for the system's minutes of retries.
int ConnectWithin(SocketHandle socket, const Endpoint& peer, int timeout_ms) {
  if (timeout_ms < 0) return Connect(socket, peer) ? 1 : -1;
  const Native native = ToNative(socket);
  const int flags = fcntl(native, F_GETFL, 0);
  if (flags < 0 || fcntl(native, F_SETFL, flags | O_NONBLOCK) != 0) return -1;
  sockaddr_storage storage{};
  const Length length = ToSockaddr(peer, &storage);
  int result = 1;
  if (connect(native, reinterpret_cast<sockaddr*>(&storage), length) != 0) {
    result = -1;
    if (errno == EINPROGRESS) {
      pollfd entry{native, POLLOUT, 0};
      int ready = 0;
      do {
        ready = poll(&entry, 1, timeout_ms);
      } while (ready < 0 && errno == EINTR);
      int error = 0;
      Length size = sizeof error;
      if (ready == 0) {
        result = 0;
      } else if (ready > 0 && getsockopt(native, SOL_SOCKET, SO_ERROR, &error, &size) == 0 &&
                 error == 0) {
        result = 1;
      } else if (error != 0) {
        errno = error;
      }
    }
  }
  const int saved = errno;
  fcntl(native, F_SETFL, flags);
  errno = saved;
  return result;
}

#endif

}  // namespace os
