// The line protocol of a text control connection (FTP, Telnet style): lines end in CR LF,
// a reply is one or more lines, and its first line starts with a three-digit code.
//
//   230-Welcome to the archive.
//   2024 maintenance window: Saturday.
//   230 User logged in.
//
// A reply that opens with "230-" ends only at a line that starts with the same code and a
// blank (RFC 959): the digit-led line in the middle belongs to the text.
#include <cctype>
#include <cstring>
#include <string>

#include "transport/tcp/tcp.h"

namespace transport {
namespace {

constexpr int kOverflowResult = 2;

// Reads one line into buffer (at most size - 1 characters), NUL-terminated, without its CR LF;
// *length receives its length (NUL bytes inside a line are kept).
int ReadLine(Socket socket, char* buffer, int size, const Deadline& deadline, LogHandle log,
             int* length) {
  *length = 0;
  if (size <= 1 || socket == kNoSocket) return kTcpError;
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  int read = size - 1;
  const int status = TcpRecvUntilStrBy(socket, buffer, &read, "\n", 1, true, deadline, log);
  if (status != kTcpSuccess) {
    *length = read;
    return status;
  }
  if (read > 0 && buffer[read - 1] == '\r') --read;
  buffer[read] = '\0';
  *length = read;
  return kTcpSuccess;
}

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// What ends the reply being read: set from its first line.
class ReplyEnd {
 public:
  // "230-Welcome" opens a multi-line reply; anything else is judged line by line.
  void TakeFirstLine(const char* line, int length) {
    multi_line_ =
        length >= 4 && IsDigit(line[0]) && IsDigit(line[1]) && IsDigit(line[2]) && line[3] == '-';
    if (multi_line_) std::memcpy(code_, line, 3);
  }
  // Without an opening code, as before RFC 959's rule: a line that starts with a digit and
  // has no '-' in the fourth place ends it. With one: "230 " or a lone "230".
  bool Ends(const char* line, int length) const {
    if (!multi_line_) return length > 0 && IsDigit(line[0]) && !(length > 3 && line[3] == '-');
    return length >= 3 && std::memcmp(line, code_, 3) == 0 && (length == 3 || line[3] == ' ');
  }

 private:
  bool multi_line_ = false;
  char code_[3] = {};
};

// Reads the lines of one reply under one deadline and one byte budget.
class ReplyReader {
 public:
  ReplyReader(Socket socket, const Deadline& deadline, LogHandle log)
      : socket_(socket), deadline_(deadline), log_(log) {}

  int Line(char* buffer, int size, int* length) {
    const int status = ReadLine(socket_, buffer, size, deadline_, log_, length);
    taken_ += *length + 1;
    return status;
  }

  // A reply too long for the buffer keeps its start; the rest is read and dropped, so that
  // the next command still reads its own reply. `mid_line` says that a line was cut short and
  // its remainder is still unread; `line_ends` whether that line is the reply's last. A reply
  // that never ends (endless lines, or no line end at all) is given up after kMaxReplyBytes.
  int DropRest(const ReplyEnd& end, bool mid_line, bool line_ends) {
    char spare[512];
    for (;;) {
      if (taken_ > kMaxReplyBytes) {
        Trace(kTraceInternal, "reply on socket ", socket_, " longer than ", kMaxReplyBytes,
              " bytes: given up");
        return kTcpError;
      }
      int length = 0;
      const int status = Line(spare, sizeof spare, &length);
      if (status == kTcpOverflow) {
        if (!mid_line) line_ends = end.Ends(spare, static_cast<int>(sizeof spare) - 1);
        mid_line = true;
        continue;
      }
      if (status != kTcpSuccess) return status;
      if (!mid_line) line_ends = end.Ends(spare, length);
      if (line_ends) return kTcpSuccess;
      mid_line = false;
    }
  }

 private:
  Socket socket_;
  Deadline deadline_;
  LogHandle log_;
  int taken_ = 0;
};

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
  const bool password = line.compare(0, 5, "PASS ") == 0;
  const std::string shown = password ? std::string("PASS ****\r\n") : line;
  int status =
      TcpSendShowing(socket, line.data(), static_cast<int>(line.size()), urgent, log, shown);
  if (status != kTcpSuccess) status = kTcpError;
  Trace(kTraceExit, "TnSend : return code ", status);
  return status;
}

int TnReadLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  if (buffer == nullptr) return kTcpError;
  int length = 0;
  return ReadLine(socket, buffer, size, Deadline::After(timeout_s), log, &length);
}

int TnReadMultiLine(Socket socket, char* buffer, int size, int timeout_s, LogHandle log) {
  return TnReadMultiLineBy(socket, buffer, size, Deadline::After(timeout_s), log);
}

int TnReadMultiLineBy(Socket socket, char* buffer, int size, const Deadline& deadline,
                      LogHandle log) {
  if (buffer == nullptr || size <= 0) return kTcpError;
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  ReplyReader reader(socket, deadline, log);
  ReplyEnd end;
  int position = 0;
  int status = kTcpSuccess;
  for (;;) {
    char* line = buffer + position;
    int length = 0;
    status = reader.Line(line, size - position, &length);
    if (position == 0) end.TakeFirstLine(line, length);
    if (status == kTcpOverflow) {
      TraceHexDump("Overflow", buffer, std::strlen(buffer));
      status = reader.DropRest(end, true, end.Ends(line, size - position - 1));
      if (status == kTcpSuccess) status = kTcpOverflow;
      break;
    }
    if (status != kTcpSuccess || end.Ends(line, length)) break;
    position += length;
    if (position >= size - 5) {
      status = reader.DropRest(end, false, false);
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
