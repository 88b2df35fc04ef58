#include "transport/ftp/ftp_session.h"

#include <algorithm>
#include <cstring>

namespace transport {

SessionRegistry& SessionRegistry::Instance() {
  static SessionRegistry registry;
  return registry;
}

FtpSession* SessionRegistry::Find() {
  std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& session : sessions_) {
    if (session->owner == std::this_thread::get_id()) return session.get();
  }
  return nullptr;
}

FtpSession* SessionRegistry::Create() {
  std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& session : sessions_) {
    if (session->owner == std::this_thread::get_id()) return nullptr;
  }
  sessions_.push_back(FtpSessionPtr(new FtpSession));
  sessions_.back()->owner = std::this_thread::get_id();
  return sessions_.back().get();
}

void SessionRegistry::Swap(FtpSessionPtr* slot) {
  std::lock_guard<std::mutex> lock(mutex_);
  const auto mine = std::find_if(sessions_.begin(), sessions_.end(), [](const auto& session) {
    return session->owner == std::this_thread::get_id();
  });
  FtpSessionPtr incoming = std::move(*slot);
  if (mine != sessions_.end()) {
    *slot = std::move(*mine);
    sessions_.erase(mine);
  }
  if (incoming) {
    incoming->owner = std::this_thread::get_id();
    sessions_.push_back(std::move(incoming));
  }
}

void FtpSessionDeleter::operator()(FtpSession* session) const {
  if (session == nullptr) return;
  CloseEverything(*session);
  delete session;
}

void StartOperation(FtpSession& session) {
  session.deadline = Deadline::After(session.timeout_s);
}

void CloseEverything(FtpSession& session) {
  CloseLocalFile(session);
  TcpClose(&session.data_socket);
  TcpClose(&session.listener);
  TcpClose(&session.control);
}

void SessionRegistry::Remove() {
  std::lock_guard<std::mutex> lock(mutex_);
  sessions_.erase(std::remove_if(sessions_.begin(), sessions_.end(),
                                 [](const auto& session) {
                                   return session->owner == std::this_thread::get_id();
                                 }),
                  sessions_.end());
}

bool SessionRegistry::HasNeighbour() {
  std::lock_guard<std::mutex> lock(mutex_);
  return sessions_.size() > 1;
}

void CloseLocalFile(FtpSession& session) {
  if (session.local_file == os::kNoFile) return;
  os::CloseFile(session.local_file);
  session.local_file = os::kNoFile;
}

int SendLine(FtpSession& session, const std::string& line, bool urgent) {
  if (session.verbose) {
    // The password stays out of every trace.
    TraceRaw(line.compare(0, 5, "PASS ") == 0 ? std::string("PASS ****\r\n") : line + "\r\n");
  }
  return TnSend(session.control, line.c_str(), urgent, kNoLog) == kTcpSuccess ? kFtpOk
                                                                              : kFtpCannotSend;
}

int ReadReply(FtpSession& session) {
  char* reply = session.reply.data();
  const int status = TnReadMultiLineBy(
      session.control, reply, static_cast<int>(session.reply.size()), session.deadline, kNoLog);
  if (session.verbose) TraceRaw(std::string(reply) + "\r\n");
  if (status == kTcpSuccess) return TcpAtoi(reply);
  // A reply line longer than the buffer passes on as "2", which no row expects.
  return status == 2 ? 2 : kNoReply;
}

int RunCommand(FtpSession& session, FtpCommand command, const char* argument) {
  if (session.control == kNoSocket) return kFtpNotConnected;
  const std::string line = CommandLine(command, argument);
  if (!line.empty()) {
    if (const int sent = SendLine(session, line); sent != kFtpOk) return sent;
  }
  return MapReply(command, ReadReply(session));
}

void Notify(FtpSession& session, FtpEvent event, std::int64_t value) {
  if (session.notify) session.notify(event, value);
}

int RunOrPostTransfer(FtpSession& session) {
  if (!session.asynchronous || !session.notify) return TransferLoop(session);
  session.posted.push_back([&session] {
    if (session.aborted) {
      AbortAction(session, true, true, 1);
      return;
    }
    const int result = TransferLoop(session);
    if (result != kFtpAborted) Notify(session, FtpEvent::kFinished, result);
  });
  return kFtpOk;
}

}  // namespace transport
