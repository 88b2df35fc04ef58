// The line protocol of a text control connection (FTP, Telnet style): lines end in CR LF,
// a reply is one or more lines, and its first line starts with a three-digit code.
//
//   230-Welcome to the archive.
//    Mirrors are listed in /pub/MIRRORS.
//   230 User logged in.
#include <cctype>
#include <cstring>
#include <string>

#include "transport/tcp/tcp.h"

namespace transport {
namespace {

constexpr int kOverflowResult = 2;

// Reads one line into buffer (at most size - 1 characters), NUL-terminated, without its CR LF;
// *length receives its length (NUL bytes inside a line are kept).
int ReadLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log, int* length) {
  *length = 0;
  if (size <= 1 || socket == kNoSocket) return kTcpError;
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  int read = size - 1;
  const int status = TcpRecvUntilStr(socket, buffer, &read, "\n", 1, true, timeout_s, log);
  if (status != kTcpSuccess) return status;
  if (read > 0 && buffer[read - 1] == '\r') --read;
  buffer[read] = '\0';
  *length = read;
  return kTcpSuccess;
}

// "230 User logged in." ends a reply; "230-Welcome" and lines without a code do not.
bool EndsReply(const char* line, int length) {
  return length > 0 && std::isdigit(static_cast<unsigned char>(line[0])) &&
         !(length > 3 && line[3] == '-');
}

// A reply too long for the buffer keeps its start; the rest is read and dropped, so that
// the next command still reads its own reply. `mid_line` says that a line was cut short and
// its remainder is still unread; `line_ends` whether that line is the reply's last.
int DropRestOfReply(Socket socket, int timeout_s, LogHandle log, bool mid_line, bool line_ends) {
  char spare[512];
  for (;;) {
    int length = 0;
    const int status = ReadLine(socket, spare, sizeof spare, timeout_s, log, &length);
    if (status == kTcpOverflow) {
      if (!mid_line) line_ends = EndsReply(spare, static_cast<int>(sizeof spare) - 1);
      mid_line = true;
      continue;
    }
    if (status != kTcpSuccess) return status;
    if (!mid_line) line_ends = EndsReply(spare, length);
    if (line_ends) return kTcpSuccess;
    mid_line = false;
  }
}

int MultiLineResult(int status) {
  switch (status) {
    case kTcpSuccess:
    case kTcpCancelled:
    case kTcpTimeout:
    case kTcpClosed:
      return status;
    case kTcpOverflow:
      return kOverflowResult;
    default:
      return kTcpError;
  }
}

}  // namespace

int TnSend(Socket socket, const char* text, bool urgent, LogHandle log) {
  if (text == nullptr) return kTcpError;
  std::string line(text);
  line += "\r\n";
  int status = TcpSend(socket, line.data(), static_cast<int>(line.size()), urgent, log);
  if (status != kTcpSuccess) status = kTcpError;
  Trace(kTraceExit, "TnSend : return code ", status);
  return status;
}

int TnReadLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  if (buffer == nullptr) return kTcpError;
  int length = 0;
  return ReadLine(socket, buffer, size, timeout_s, log, &length);
}

int TnReadMultiLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  if (buffer == nullptr || size <= 0) return kTcpError;
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  int position = 0;
  int status = kTcpSuccess;
  for (;;) {
    char* line = buffer + position;
    int length = 0;
    status = ReadLine(socket, line, size - position, timeout_s, log, &length);
    if (status == kTcpOverflow) {
      TraceHexDump("Overflow", buffer, std::strlen(buffer));
      status = DropRestOfReply(socket, timeout_s, log, true, EndsReply(line, size - position - 1));
      if (status == kTcpSuccess) status = kTcpOverflow;
      break;
    }
    if (status != kTcpSuccess || EndsReply(line, length)) break;
    position += length;
    if (position >= size - 5) {
      status = DropRestOfReply(socket, timeout_s, log, false, false);
      break;
    }
    buffer[position++] = '\n';
  }
  status = MultiLineResult(status);
  Trace(kTraceExit, "TnReadMultiLine: return code ", status);
  return status;
}

int TnReadAnswerCode(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  int status = TnReadMultiLine(socket, buffer, size, timeout_s, log);
  if (status == kTcpSuccess) status = TcpAtoi(buffer);
  Trace(kTraceExit, "TnReadAnswerCode: return code ", status);
  return status;
}

}  // namespace transport
