// Timed receives, whole-buffer sends, flushing and the small queries of the TCP line layer.
#include <cctype>
#include <climits>
#include <cstring>

#include "transport/tcp/tcp.h"

namespace transport {
namespace {

int FailureStatus() {
  return os::IsCancelled(os::LastSocketError()) ? kTcpCancelled : kTcpError;
}

void AppendToLog(LogHandle log, const char* data, std::size_t size) {
  if (log != kNoLog) os::WriteToFile(log, data, size);
}

// Reads and discards what waits, 64 bytes at a time; the result as TcpFlush gives it. A peer
// that never stops sending (a server streaming a file nobody reads any more) is left after
// kMaxReplyBytes: closing the socket ends it anyway.
int Drain(Socket socket, bool urgent) {
  int result = 0;
  char block[64];
  for (int drained = 0;
       drained < kMaxReplyBytes && (urgent ? TcpIsOOBDataAvail(socket) : TcpIsDataAvail(socket));
       drained += static_cast<int>(sizeof block)) {
    const auto count =
        os::Receive(socket, block, sizeof block, urgent ? os::kRecvUrgent : os::kRecvNormal);
    if (count < 0) return FailureStatus();
    if (count == 0) return 0;
    TraceHexDump("Flushed", block, static_cast<std::size_t>(count));
    result = 1;
  }
  return result;
}

}  // namespace

int TcpRecv(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  Trace(kTraceEnter, "TcpRecv on socket ", socket, ". Timeout ", timeout_s, ", bufsize ", size);
  return TcpRecvBy(socket, buffer, size, Deadline::After(timeout_s), log);
}

int TcpRecvBy(Socket socket, char* buffer, int size, const Deadline& deadline, LogHandle log) {
  if (socket == kNoSocket) return kTcpError;
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
  return os::BytesAvailable(socket) > 0;
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
