// Stream sockets over the platform's socket library (BSD sockets; Windows Sockets under
// _WIN32). A thin layer: every call reports failure by its result and leaves the platform's
// error number to LastSocketError(). No call throws; none keeps state between calls.
#ifndef PELICOR_SUPPORT_OS_SOCKET_H_
#define PELICOR_SUPPORT_OS_SOCKET_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace os {

// A socket of the platform (a descriptor on POSIX, a SOCKET on Windows); kNoSocket is none.
using SocketHandle = std::intptr_t;
constexpr SocketHandle kNoSocket = -1;

// An IPv4 or IPv6 address with a port, in the platform's byte order where it matters.
struct Endpoint {
  bool v6 = false;
  std::uint8_t address[16] = {};  // IPv4 uses the first 4 bytes
  std::uint16_t port = 0;
};

// Starts and stops the socket library (WSAStartup/WSACleanup on Windows; nothing elsewhere).
bool StartSockets();
void StopSockets();

// The platform's error number of the last failed socket call, and whether it stands for a
// blocking call that a signal or WSACancelBlockingCall interrupted.
int LastSocketError();
bool IsCancelled(int error);

// A numeric IPv4 or IPv6 address, or a host name looked up. False when unknown.
bool ResolveHost(const std::string& host, Endpoint* out);
// Every address a host name has, in the resolver's order (IPv6 may come first). False when
// none is known.
bool ResolveHostAll(const std::string& host, std::vector<Endpoint>* out);
// True when both name the same address (ports aside); an IPv4 address and its IPv6-mapped
// form ("::ffff:127.0.0.1") are the same.
bool SameAddress(const Endpoint& a, const Endpoint& b);
// The port of a service name ("ftp") for tcp; 0 when the service is unknown.
std::uint16_t ServicePort(const char* service);
// The text form of an endpoint's address ("127.0.0.1", "::1"), without the port.
std::string AddressText(const Endpoint& endpoint);

SocketHandle OpenStreamSocket(bool v6);
bool CloseSocket(SocketHandle socket);
// Ends our sending half: the peer reads the end of the data, and can still send to us.
bool ShutdownSend(SocketHandle socket);
bool Connect(SocketHandle socket, const Endpoint& peer);
// Connects within `timeout_ms` (negative: the system's own limit): 1 connected, 0 time-out,
// -1 refused or failed. The socket is blocking again afterwards.
int ConnectWithin(SocketHandle socket, const Endpoint& peer, int timeout_ms);
bool BindAndListen(SocketHandle socket, const Endpoint& local, int backlog);
// Accepts one connection; `peer` (when given) receives the address it came from.
SocketHandle Accept(SocketHandle listener, Endpoint* peer = nullptr);
bool LocalEndpoint(SocketHandle socket, Endpoint* out);
bool PeerEndpoint(SocketHandle socket, Endpoint* out);

bool SetReuseAddress(SocketHandle socket);
bool SetLinger(SocketHandle socket, bool on, int seconds);

// Waits until the socket can be read: 1 ready, 0 time-out, -1 error. A negative time-out
// waits without limit; 0 only polls.
int WaitReadable(SocketHandle socket, int timeout_ms);

enum RecvFlags : int { kRecvNormal = 0, kRecvPeek = 1, kRecvUrgent = 2 };
// Bytes received (0 when the peer closed), or -1.
std::ptrdiff_t Receive(SocketHandle socket, char* buffer, std::size_t size, int flags);
// Bytes sent, or -1. Never raises SIGPIPE.
std::ptrdiff_t Send(SocketHandle socket, const char* buffer, std::size_t size, bool urgent);

// Bytes that can be read without blocking; -1 when the query fails.
long BytesAvailable(SocketHandle socket);
// True when urgent (out-of-band) data waits to be read.
bool UrgentDataPending(SocketHandle socket);

// A number for the calling thread, as the platform's tools show it.
long CurrentThreadNumber();

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_SOCKET_H_
