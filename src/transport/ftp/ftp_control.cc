// Session set-up, log-on and the simple commands of the FTP client.
#include <cstring>

#include "transport/ftp/ftp_client.h"
#include "transport/ftp/ftp_session.h"
#include "transport/ftp/reply_parse.h"

namespace transport {
namespace {

constexpr std::uint16_t kFtpPort = 21;

int ConnectResult(int status) {
  switch (status) {
    case kTcpConnectFailed:
      return kFtpNoServer;
    case kTcpNoSocket:
      return kFtpNoSocket;
    case kTcpUnknownHost:
      return kFtpUnknownHost;
    case kTcpTimeout:
      return kFtpTimeout;
    case kTcpCancelled:
      return kFtpAborted;
    default:
      return kFtpConnectError;
  }
}

int Connect(FtpSession& session, const char* host_text) {
  std::string host;
  std::uint16_t port = 0;
  if (!SplitHostPort(host_text, &host, &port)) return kFtpUnknownHost;
  if (port == 0) port = session.port;
  FtpCloseConnection();
  session.reply.fill('\0');
  session.epsv_refused = false;
  session.data_stalled = false;
  session.tls_failure.clear();
  session.host = host;
  const int status = TcpConnect(&session.control, host.c_str(), port == kFtpPort ? "ftp" : nullptr,
                                &port, session.deadline);
  if (status != kTcpSuccess) return ConnectResult(status);
  session.type = kFtpTypeAscii;
  const int result = RunCommand(session, kCmdGreeting, nullptr);
  return result == kFtpOk ? SecureControl(session) : result;
}

// Runs a command on the caller's session.
int Simple(FtpCommand command, const char* argument) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  StartOperation(*session);
  return RunCommand(*session, command, argument);
}

// Runs a command and hands out the reply text.
int WithReply(FtpCommand command, const char* argument, std::string* reply) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  StartOperation(*session);
  const int result = RunCommand(*session, command, argument);
  if (reply != nullptr) *reply = session->reply.data();
  return result;
}

template <typename Change>
int Configure(Change change) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  change(*session);
  return kFtpOk;
}

}  // namespace

int FtpInit() {
  if (SessionRegistry::Instance().Find() != nullptr) return kFtpAlreadyInitialised;
  if (TcpInit() != kTcpSuccess) return kFtpSocketLibrary;
  return SessionRegistry::Instance().Create() != nullptr ? kFtpOk : kFtpAlreadyInitialised;
}

// Closes only this session's sockets: other sessions of the thread (held by other owners)
// keep theirs.
int FtpRelease() {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpReleaseWithoutInit;
  CloseEverything(*session);
  os::StopSockets();
  SessionRegistry::Instance().Remove();
  return kFtpOk;
}

void FtpSwapSession(FtpSessionPtr* slot) {
  if (slot != nullptr) SessionRegistry::Instance().Swap(slot);
}

int FtpSetSynchronousMode() {
  return Configure([](FtpSession& session) { session.asynchronous = false; });
}
int FtpSetAsynchronousMode() {
  return Configure([](FtpSession& session) { session.asynchronous = true; });
}
int FtpSetVerboseMode(bool on) {
  return Configure([on](FtpSession& session) { session.verbose = on; });
}
int FtpSetPassiveMode(bool on) {
  return FtpSetDataMode(on ? FtpDataMode::kPassive : FtpDataMode::kActive);
}
int FtpSetDataMode(FtpDataMode mode) {
  return Configure([mode](FtpSession& session) { session.data_mode = mode; });
}
int FtpSetDefaultPort(std::uint16_t port) {
  return Configure([port](FtpSession& session) { session.port = port; });
}
int FtpSetDefaultTimeOut(int seconds) {
  return Configure([seconds](FtpSession& session) { session.timeout_s = seconds; });
}

int FtpLogin(const char* host, const char* user, const char* password, const FtpNotify& notify) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  if (host == nullptr) return kFtpBadParameters;
  StartOperation(*session);
  int result = Connect(*session, host);
  if (result == kFtpOk && user != nullptr) result = RunCommand(*session, kCmdUser, user);
  if (result == kFtpPasswordWanted && password != nullptr) {
    result = RunCommand(*session, kCmdPass, password);
  }
  if (!session->asynchronous || !notify) return result;
  session->posted.push_back([notify, result] { notify(FtpEvent::kFinished, result); });
  return kFtpOk;
}

int FtpSendAccount(const char* account) {
  return Simple(kCmdAcct, account);
}
int FtpCWD(const char* directory) {
  return Simple(kCmdCwd, directory);
}
int FtpCDUP() {
  return Simple(kCmdCdup, nullptr);
}
int FtpMKD(const char* directory) {
  return Simple(kCmdMkd, directory);
}
int FtpRMD(const char* directory) {
  return Simple(kCmdRmd, directory);
}
int FtpDeleteFile(const char* name) {
  return Simple(kCmdDele, name);
}
int FtpNOOP() {
  return Simple(kCmdNoop, nullptr);
}
int FtpSyst(std::string* reply) {
  return WithReply(kCmdSyst, nullptr, reply);
}

int FtpHelp(const char* topic, std::string* reply) {
  return WithReply(topic != nullptr ? kCmdHelpTopic : kCmdHelp, topic, reply);
}

int FtpRenameFile(const char* from, const char* to) {
  const int result = Simple(kCmdRnfr, from);
  return result == kFtpOk ? Simple(kCmdRnto, to) : result;
}

int FtpPWD(std::string* directory) {
  std::string reply;
  const int result = WithReply(kCmdPwd, nullptr, &reply);
  if (result != kFtpOk) return result;
  std::string found;
  if (!ParseQuotedDirectory(reply, &found)) return kFtpPwdWithoutDirectory;
  if (directory != nullptr) *directory = found;
  return kFtpOk;
}

int FtpQuit() {
  const int result = Simple(kCmdQuit, nullptr);
  if (result == kFtpOk) FtpCloseConnection();
  return result;
}

int FtpCloseConnection() {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  CloseLocalFile(*session);
  TcpClose(&session->data_socket);
  TcpClose(&session->listener);
  TcpClose(&session->control);
  const bool open = session->data_socket != kNoSocket || session->control != kNoSocket;
  return open ? kFtpCloseFailed : kFtpOk;
}

int FtpSetType(char type) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  StartOperation(*session);
  return SetType(*session, type);
}

int FtpRestart(std::int64_t offset) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  StartOperation(*session);
  return Restart(*session, offset);
}

//   213 1234567
int FtpSize(const char* remote, std::uint64_t* size) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  if (session->control == kNoSocket) return kFtpNotConnected;
  if (remote == nullptr || size == nullptr) return kFtpBadParameters;
  StartOperation(*session);
  // Servers count the bytes of the file as stored only in binary type (vsftpd refuses SIZE
  // in ASCII type, others count converted line ends).
  if (const int typed = SetType(*session, kFtpTypeBinary); typed != kFtpOk) return typed;
  if (const int sent = SendLine(*session, std::string("SIZE ") + remote); sent != kFtpOk) {
    return sent;
  }
  const int reply = ReadReply(*session);
  switch (reply) {
    case 213:
      return ParseSizeReply(session->reply.data(), size) ? kFtpOk : kFtpUnexpectedAnswer;
    case kNoReply:
      return kFtpNoAnswer;
    case 500:
    case 501:
    case 502:
    case 504:
      return kFtpNotImplemented;
    case 550:
      return kFtpCannotOpenRemote;
    default:
      return kFtpUnexpectedAnswer;
  }
}

int FtpAbort() {
  return Configure([](FtpSession& session) { session.aborted = true; });
}

std::uint64_t FtpBytesToBeTransferred() {
  FtpSession* session = SessionRegistry::Instance().Find();
  return session == nullptr ? 0 : ParseAnnouncedSize(session->reply.data());
}

std::uint64_t FtpBytesTransferred() {
  FtpSession* session = SessionRegistry::Instance().Find();
  return session == nullptr ? 0 : session->transferred;
}

std::string FtpLastReply() {
  FtpSession* session = SessionRegistry::Instance().Find();
  return session == nullptr ? std::string() : std::string(session->reply.data());
}

int FtpLastReplyCode() {
  FtpSession* session = SessionRegistry::Instance().Find();
  return session == nullptr ? 0 : TcpAtoi(session->reply.data());
}

int FtpProcessEvents() {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  while (!session->posted.empty()) {
    auto work = std::move(session->posted.front());
    session->posted.pop_front();
    work();
  }
  return kFtpOk;
}

}  // namespace transport
