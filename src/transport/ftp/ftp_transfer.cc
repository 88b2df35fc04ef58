// Running transfers: the receive loop into a local file, the streaming data connection the
// caller pulls from, and the abort that ends a transfer early.
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "transport/ftp/ftp_client.h"
#include "transport/ftp/ftp_session.h"
#include "transport/ftp/reply_parse.h"

namespace transport {
namespace {

constexpr int kFileCreate = 32;
constexpr int kMaxAborRetries = 5;
constexpr int kDrainTimeoutLimit = 5;

// Lets other sessions and the owner's event loop run during a long asynchronous transfer. A
// synchronous transfer runs inside its caller's call and has nobody to wait for: pausing
// there capped a download at about 400 KB/s.
void PauseEveryFewBlocks(FtpSession& session) {
  if (!session.asynchronous || !session.notify) return;
  const std::uint32_t period = SessionRegistry::Instance().HasNeighbour() ? 3 : 10;
  if (++session.blocks % period == 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
}

// Within the operation's deadline, and never more than a few seconds in all.
void DrainData(FtpSession& session) {
  const Deadline cap = Deadline::After(kDrainTimeoutLimit);
  const Deadline& limit =
      session.deadline.Limited() && session.deadline.RemainingMs() < cap.RemainingMs()
          ? session.deadline
          : cap;
  while (TcpRecvBy(session.data_socket, session.data.data(), static_cast<int>(session.data.size()),
                   limit, kNoLog) > 0) {
  }
}

// Common checks of the calls that start a transfer; null with *result set when one fails.
FtpSession* TransferSession(int* result) {
  FtpSession* session = SessionRegistry::Instance().Find();
  *result = session == nullptr ? kFtpNotInitialised
                               : (session->control == kNoSocket ? kFtpNotConnected : kFtpOk);
  return *result == kFtpOk ? session : nullptr;
}

void StartCounting(FtpSession& session, bool progress, const FtpNotify& notify,
                   std::int64_t offset) {
  session.progress = progress;
  session.notify = notify;
  session.transferred = 0;
  session.blocks = 0;
  const std::uint64_t announced = ParseAnnouncedSize(session.reply.data());
  const auto skipped = static_cast<std::uint64_t>(offset > 0 ? offset : 0);
  session.expected = announced > skipped ? announced - skipped : 0;
}

const char* RetrieveVerb(int action) {
  if (action == kFtpActionStore) return "STOR";
  if (action == kFtpActionAppend) return "APPE";
  return "RETR";
}

// ABOR with the Telnet "interrupt process" and "synch" in front, the synch as urgent data, as
// BSD clients send it: IAC IP IAC(urgent) DM "ABOR\r\n". The urgent byte makes a server
// that is busy sending (proftpd) look at its control connection. ABOR itself goes in band:
// as urgent data its last byte would be taken out of the stream and the server would read
// the next command glued to "ABOR\r". TLS has no urgent data, and the Telnet bytes would reach
// the server in band in front of the command: over TLS it is ABOR alone.
int SendAbort(FtpSession& session) {
  if (session.tls) return SendLine(session, "ABOR");
  const char synch[] = {'\xff', '\xf4', '\xff'};
  if (TcpSend(session.control, synch, sizeof synch, true, kNoLog) != kTcpSuccess) {
    return kFtpCannotSend;
  }
  return SendLine(session,
                  "\xf2"
                  "ABOR");
}

}  // namespace

// The data connection is drained and closed before the replies are read: a server blocked
// in sending (proftpd) answers ABOR only once its data connection is gone, while a server
// that stopped sends its 426 and the ABOR reply either way.
int AbortAction(FtpSession& session, bool drain, bool notify, int debug_position) {
  if (session.verbose) {
    TraceRaw("entering AbortAction, Debug pos " + std::to_string(debug_position) + "\r\n");
  }
  session.aborted = false;
  int sent = SendAbort(session);
  CloseLocalFile(session);
  if (drain) DrainData(session);
  TcpClose(&session.data_socket);
  int reply = kNoReply;
  for (int tries = 1; sent == kFtpOk; ++tries) {
    reply = ReadReply(session);
    if (reply != 500 || tries == kMaxAborRetries) break;
    sent = SendAbort(session);
  }
  reply = ReadReply(session);
  if (notify && session.asynchronous) Notify(session, FtpEvent::kFinished, kFtpAborted);
  TcpFlush(session.control);
  return reply;
}

// Each block that arrives starts the time-out again: a transfer fails when it stalls for the
// time-out, not when it is long. A stalled one is aborted within what is left of that time-out.
int TransferLoop(FtpSession& session) {
  for (;;) {
    const int count = TcpRecvBy(session.data_socket, session.data.data(),
                                static_cast<int>(session.data.size()), session.deadline, kNoLog);
    if (count < 0) {
      AbortAction(session, false, false, 10);
      return kFtpDataConnectionFailed;
    }
    if (count == 0) {
      CloseLocalFile(session);
      TcpClose(&session.data_socket);
      return RunCommand(session, kCmdEndOfTransfer, nullptr);
    }
    const auto size = static_cast<std::size_t>(count);
    if (os::WriteToFile(session.local_file, session.data.data(), size) !=
        static_cast<std::ptrdiff_t>(size)) {
      AbortAction(session, true, false, 9);
      return kFtpCannotWriteFile;
    }
    session.transferred += size;
    StartOperation(session);
    if (session.progress) {
      Notify(session, FtpEvent::kProgress, static_cast<std::int64_t>(session.transferred));
    }
    PauseEveryFewBlocks(session);
    if (session.aborted) {
      AbortAction(session, true, true, 8);
      return kFtpAborted;
    }
  }
}

int FtpRecvFile(const char* remote, const char* local, char type, bool progress,
                const FtpNotify& notify) {
  int result = kFtpOk;
  FtpSession* session = TransferSession(&result);
  if (session == nullptr) return result;
  if (remote == nullptr || local == nullptr) return kFtpBadParameters;
  StartOperation(*session);
  result = OpenDataConnection(*session, std::string("RETR ") + remote, local, kFileCreate, type, 0);
  if (result != kFtpOk) return result;
  StartCounting(*session, progress, notify, 0);
  return RunOrPostTransfer(*session);
}

int FtpRecvFileToHandle(const char* remote, os::FileHandle file, char type, bool progress,
                        std::int64_t offset, const FtpNotify& notify) {
  int result = kFtpOk;
  FtpSession* session = TransferSession(&result);
  if (session == nullptr || remote == nullptr || file == os::kNoFile) {
    if (file != os::kNoFile) os::CloseFile(file);
    return session == nullptr ? result : kFtpBadParameters;
  }
  StartOperation(*session);
  result = OpenDataConnection(*session, std::string("RETR ") + remote, nullptr, 0, type, offset);
  if (result != kFtpOk) {
    os::CloseFile(file);
    return result;
  }
  session->local_file = file;
  StartCounting(*session, progress, notify, offset);
  return RunOrPostTransfer(*session);
}

int FtpDir(const char* pattern, const char* local, bool long_listing, const FtpNotify& notify) {
  int result = kFtpOk;
  FtpSession* session = TransferSession(&result);
  if (session == nullptr) return result;
  // Listings always go into a file; nothing delivers listing data by notification.
  if (local == nullptr) return kFtpBadParameters;
  std::string command = long_listing ? "LIST" : "NLST";
  if (pattern != nullptr) command = command + " " + pattern;
  StartOperation(*session);
  result = OpenDataConnection(*session, command, local, kFileCreate, kFtpTypeAscii, 0);
  if (result != kFtpOk) return result;
  StartCounting(*session, false, notify, 0);
  return RunOrPostTransfer(*session);
}

int FtpOpenDataConnection(const char* remote, int action, char type, std::int64_t offset) {
  int result = kFtpOk;
  FtpSession* session = TransferSession(&result);
  if (session == nullptr) return result;
  if (remote == nullptr) return kFtpBadParameters;
  const std::string command = std::string(RetrieveVerb(action)) + " " + remote;
  StartOperation(*session);
  result = OpenDataConnection(*session, command, nullptr, 0, type, offset);
  if (result == kFtpOk) StartCounting(*session, false, nullptr, offset);
  return result;
}

int FtpRecvThroughDataConnection(char* buffer, int* length) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  if (buffer == nullptr || length == nullptr || *length <= 0) return kFtpBadParameters;
  if (session->aborted) {
    AbortAction(*session, true, false, 20);
    return kFtpAborted;
  }
  StartOperation(*session);
  const int count = TcpRecvBy(session->data_socket, buffer, *length, session->deadline, kNoLog);
  if (count == 0) return kFtpDataClosed;
  if (count < 0) {
    session->data_stalled = true;
    return kFtpDataConnectionFailed;
  }
  *length = count;
  session->transferred += static_cast<std::uint64_t>(count);
  return kFtpOk;
}

int FtpCloseDataConnection() {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  CloseLocalFile(*session);
  if (TcpClose(&session->data_socket) != kTcpSuccess) return kFtpCloseFailed;
  // After a stall or a broken connection the reply is only taken if it is already there.
  session->deadline = session->data_stalled ? Deadline::Now() : Deadline::After(session->timeout_s);
  session->data_stalled = false;
  switch (ReadReply(*session)) {
    case 226:
    case 250:
      return kFtpOk;
    case 452:
    case 552:
      return kFtpCannotWriteFile;
    default:
      return kFtpUnexpectedAnswer;
  }
}

}  // namespace transport
