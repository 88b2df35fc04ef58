// TcpRecvUntilStr: reads a socket up to an end marker without reading past it. It peeks at
// what has arrived, looks for the marker, and consumes only the data in front of the marker
// and the marker itself, so the bytes after it stay in the socket for the next read. A socket
// with a channel (TLS) is peeked at and consumed through it: the bytes after the marker then
// stay decoded in the channel.
#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "transport/tcp/marker_matcher.h"
#include "transport/tcp/socket_registry.h"
#include "transport/tcp/tcp.h"

namespace transport {
namespace {

int FailureStatus() {
  return os::IsCancelled(os::LastSocketError()) ? kTcpCancelled : kTcpError;
}

// One call's reading state.
struct UntilRead {
  Socket socket;
  std::shared_ptr<SocketChannel> channel;  // null for a plain socket
  char* buffer;
  std::size_t capacity;
  std::size_t marker_length;
  LogHandle log;
  std::size_t received = 0;
};

// Consumes exactly `size` bytes that a peek has shown to be there.
bool Consume(const UntilRead& read, char* into, std::size_t size) {
  for (std::size_t done = 0; done < size;) {
    const std::ptrdiff_t count =
        read.channel ? read.channel->Receive(into + done, static_cast<int>(size - done), false,
                                             Deadline::Now())
                     : os::Receive(read.socket, into + done, size - done, os::kRecvNormal);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

// Waits by `deadline` and peeks at up to `size` bytes: the count, or a status.
int Peek(const UntilRead& read, char* into, std::size_t size, const Deadline& deadline) {
  if (read.channel) return read.channel->Receive(into, static_cast<int>(size), true, deadline);
  const int status = TcpRecvBy(read.socket, nullptr, 0, deadline, read.log);
  if (status != kTcpSuccess) return status;
  Trace(kTraceCall, "recv on socket ", read.socket, ". MSG_PEEK, buffer ", size, " bytes");
  const std::ptrdiff_t peeked = os::Receive(read.socket, into, size, os::kRecvPeek);
  if (peeked < 0) return FailureStatus();
  return peeked == 0 ? kTcpClosed : static_cast<int>(peeked);
}

// Delivers the data in front of a marker that ends at `end` in the peeked bytes.
int TakeThroughMarker(UntilRead& read, std::size_t end, char* scratch, int* size) {
  const std::size_t front = end > read.marker_length ? end - read.marker_length : 0;
  if (!Consume(read, read.buffer + read.received, front) || !Consume(read, scratch, end - front)) {
    return FailureStatus();
  }
  if (read.log != kNoLog) os::WriteToFile(read.log, read.buffer + read.received, front);
  TraceHexDump("<", read.buffer + read.received, front);
  // Marker bytes that arrived in an earlier round sit at the end of the caller's data.
  const std::size_t earlier = read.marker_length - (end - front);
  *size = static_cast<int>(read.received + front - earlier);
  return kTcpSuccess;
}

}  // namespace

int TcpRecvUntilStr(Socket socket, char* buffer, int* size, const char* marker, int marker_length,
                    bool case_sensitive, int timeout_s, LogHandle log) {
  return TcpRecvUntilStrBy(socket, buffer, size, marker, marker_length, case_sensitive,
                           Deadline::After(timeout_s), log);
}

int TcpRecvUntilStrBy(Socket socket, char* buffer, int* size, const char* marker, int marker_length,
                      bool case_sensitive, const Deadline& deadline, LogHandle log) {
  if (size == nullptr || buffer == nullptr || marker == nullptr) return kTcpInvalidPointer;
  if (*size <= 0 || marker_length <= 0 || socket == kNoSocket) return kTcpError;
  UntilRead read{socket,
                 SocketRegistry::Instance().ChannelOf(socket),
                 buffer,
                 static_cast<std::size_t>(*size),
                 static_cast<std::size_t>(marker_length),
                 log};
  std::vector<char> scratch;
  try {
    scratch.resize(read.capacity + read.marker_length + 1);
  } catch (const std::bad_alloc&) {
    return kTcpNoMemory;
  }
  MarkerMatcher matcher(std::string_view(marker, read.marker_length), case_sensitive);
  for (;;) {
    const std::size_t want = read.marker_length + read.capacity - read.received;
    const int peeked = Peek(read, scratch.data(), want, deadline);
    if (peeked <= 0) {
      *size = static_cast<int>(read.received);
      Trace(kTraceInternal, peeked == kTcpCancelled ? "call cancelled" : "Timeout");
      return peeked;
    }
    const auto count = static_cast<std::size_t>(peeked);
    const std::size_t room = read.capacity - read.received;
    const std::size_t end = matcher.Find(scratch.data(), count);
    if (end != MarkerMatcher::npos && end <= room + read.marker_length) {
      return TakeThroughMarker(read, end, scratch.data(), size);
    }
    const std::size_t take = std::min(count, room);
    if (!Consume(read, buffer + read.received, take)) return FailureStatus();
    TraceHexDump("<", buffer + read.received, take);
    if (log != kNoLog) os::WriteToFile(log, buffer + read.received, take);
    matcher.Feed(buffer + read.received, take);
    read.received += take;
    if (read.received >= read.capacity) {
      *size = static_cast<int>(read.received);
      return kTcpOverflow;
    }
  }
}

}  // namespace transport
