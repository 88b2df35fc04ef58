// Timed receives, whole-buffer sends, flushing and the small queries of the TCP line layer.
// A socket with a channel (TLS) receives and sends through it; the others straight.
#include <cctype>
#include <climits>
#include <cstring>
#include <memory>

#include "transport/tcp/socket_registry.h"
#include "transport/tcp/tcp.h"

namespace transport {
namespace {

int FailureStatus() {
  return os::IsCancelled(os::LastSocketError()) ? kTcpCancelled : kTcpError;
}

void AppendToLog(LogHandle log, const char* data, std::size_t size) {
  if (log != kNoLog) os::WriteToFile(log, data, size);
}

// One read for Drain of what waits: the count, 0 when nothing more can be had, or a status.
std::ptrdiff_t ReceiveWaiting(Socket socket, SocketChannel* channel, char* block, std::size_t size,
                              bool urgent) {
  if (channel == nullptr || urgent) {
    const auto count = os::Receive(socket, block, size, urgent ? os::kRecvUrgent : os::kRecvNormal);
    return count < 0 ? FailureStatus() : count;
  }
  // A record that has only begun to arrive is left for a later read.
  const int count = channel->Receive(block, static_cast<int>(size), false, Deadline::Now());
  return count == kTcpTimeout ? kTcpClosed : count;
}

// Reads and discards what waits, 64 bytes at a time; the result as TcpFlush gives it. A peer
// that never stops sending (a server streaming a file nobody reads any more) is left after
// kMaxReplyBytes: closing the socket ends it anyway. Urgent data never goes through a channel.
int Drain(Socket socket, bool urgent) {
  int result = 0;
  char block[64];
  const std::shared_ptr<SocketChannel> channel = SocketRegistry::Instance().ChannelOf(socket);
  for (int drained = 0;
       drained < kMaxReplyBytes && (urgent ? TcpIsOOBDataAvail(socket) : TcpIsDataAvail(socket));
       drained += static_cast<int>(sizeof block)) {
    const auto count = ReceiveWaiting(socket, channel.get(), block, sizeof block, urgent);
    if (count < 0) return static_cast<int>(count);
    if (count == 0) return 0;
    TraceHexDump("Flushed", block, static_cast<std::size_t>(count));
    result = 1;
  }
  return result;
}

// TcpRecvBy through a channel: the channel waits itself, as a readable socket may hold only a
// part of a record, or a record that carries no data (a TLS 1.3 session ticket).
int ReceiveThrough(SocketChannel& channel, Socket socket, char* buffer, int size,
                   const Deadline& deadline, LogHandle log) {
  char probe = 0;
  const bool wait_only = buffer == nullptr || size <= 0;
  const int count = wait_only ? channel.Receive(&probe, 1, true, deadline)
                              : channel.Receive(buffer, size, false, deadline);
  if (count <= 0) {
    Trace(kTraceInternal, "channel of socket ", socket, ": status ", count);
    return count;
  }
  if (wait_only) return kTcpSuccess;
  AppendToLog(log, buffer, static_cast<std::size_t>(count));
  TraceHexDump("<", buffer, static_cast<std::size_t>(count));
  return count;
}

}  // namespace

int TcpRecv(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  Trace(kTraceEnter, "TcpRecv on socket ", socket, ". Timeout ", timeout_s, ", bufsize ", size);
  return TcpRecvBy(socket, buffer, size, Deadline::After(timeout_s), log);
}

int TcpRecvBy(Socket socket, char* buffer, int size, const Deadline& deadline, LogHandle log) {
  if (socket == kNoSocket) return kTcpError;
  if (const auto channel = SocketRegistry::Instance().ChannelOf(socket)) {
    return ReceiveThrough(*channel, socket, buffer, size, deadline, log);
  }
  const int ready = os::WaitReadable(socket, deadline.RemainingMs());
  if (ready == 0) {
    Trace(kTraceInternal, "select on socket ", socket, ": Timeout");
    return kTcpTimeout;
  }
  if (ready < 0) {
    Trace(kTraceError, "select on socket ", socket);
    return FailureStatus();
  }
  if (buffer == nullptr || size <= 0) return kTcpSuccess;
  const auto count = os::Receive(socket, buffer, static_cast<std::size_t>(size), os::kRecvNormal);
  if (count == 0) {
    Trace(kTraceInternal, "socket ", socket, ": Host has closed connection");
    return kTcpClosed;
  }
  if (count < 0) {
    Trace(kTraceError, "recv on socket ", socket);
    return FailureStatus();
  }
  AppendToLog(log, buffer, static_cast<std::size_t>(count));
  TraceHexDump("<", buffer, static_cast<std::size_t>(count));
  return static_cast<int>(count);
}

int TcpSend(Socket socket, const char* buffer, int size, bool urgent, LogHandle log) {
  const std::string_view shown = buffer == nullptr || size <= 0
                                     ? std::string_view()
                                     : std::string_view(buffer, static_cast<std::size_t>(size));
  return TcpSendShowing(socket, buffer, size, urgent, log, shown);
}

int TcpSendShowing(Socket socket, const char* buffer, int size, bool urgent, LogHandle log,
                   std::string_view shown) {
  Trace(kTraceEnter, "TcpSend on socket ", socket, ". ", size, " bytes to be sent");
  if (socket == kNoSocket || size < 0 || (buffer == nullptr && size > 0)) return kTcpError;
  const auto total = static_cast<std::size_t>(size);
  AppendToLog(log, buffer, total);
  TraceHexDump(">", shown.data(), shown.size());
  // Through a channel even urgent bytes go in band: TLS has no out-of-band data.
  if (const auto channel = SocketRegistry::Instance().ChannelOf(socket)) {
    return channel->Send(buffer, size);
  }
  for (std::size_t sent = 0; sent < total;) {
    const auto count = os::Send(socket, buffer + sent, total - sent, urgent);
    if (count <= 0) {
      Trace(kTraceError, "send on socket ", socket);
      return FailureStatus();
    }
    sent += static_cast<std::size_t>(count);
  }
  return kTcpSuccess;
}

int TcpFlush(Socket socket) {
  if (socket == kNoSocket) return kTcpError;
  const int normal = Drain(socket, false);
  if (normal < 0) return normal;
  const int urgent = Drain(socket, true);
  if (urgent < 0) return urgent;
  return urgent > 0 ? urgent : normal;
}

bool TcpIsDataAvail(Socket socket) {
  const auto channel = SocketRegistry::Instance().ChannelOf(socket);
  return (channel && channel->HasPending()) || os::BytesAvailable(socket) > 0;
}

bool TcpIsOOBDataAvail(Socket socket) {
  return os::UrgentDataPending(socket);
}

std::uint32_t TcpGetIPAddr(const char* host) {
  os::Endpoint found;
  if (host == nullptr || !os::ResolveHost(host, &found) || found.v6) return 0xffffffffu;
  std::uint32_t address = 0;
  std::memcpy(&address, found.address, sizeof address);  // wire order, as inet_addr gives it
  return address;
}

int TcpAtoi(const char* text) {
  if (text == nullptr) return 0;
  int value = 0;
  for (; std::isdigit(static_cast<unsigned char>(*text)); ++text) {
    if (value > (INT_MAX - 9) / 10) break;  // reply codes have three digits; never overflow
    value = value * 10 + (*text - '0');
  }
  return value;
}

}  // namespace transport
