// FTP over TLS (RFC 4217, explicit): the control connection is secured right after the
// greeting, before the account and password go out,
//   AUTH TLS
//   234 AUTH TLS successful
// data connections after "PBSZ 0" and "PROT P" (protection: private), each once the server has
// answered its command, as servers start their side of the handshake only then:
//   RETR ora_1234.trc
//   150 Opening BINARY mode data connection for ora_1234.trc (300000 bytes).
#include "transport/ftp/ftp_client.h"
#include "transport/ftp/ftp_session.h"

namespace transport {

int FtpSetTls(bool on, const TlsOptions& options) {
  FtpSession* session = SessionRegistry::Instance().Find();
  if (session == nullptr) return kFtpNotInitialised;
  if (on && !TlsAvailable()) return kFtpTlsUnavailable;
  session->tls = on;
  session->tls_options = options;
  return kFtpOk;
}

std::string FtpLastTlsFailure() {
  FtpSession* session = SessionRegistry::Instance().Find();
  return session == nullptr ? std::string() : session->tls_failure;
}

// A refusal closes the connection: nothing more is sent, in clear text least of all.
int SecureControl(FtpSession& session) {
  session.data_protected = false;
  if (!session.tls) return kFtpOk;
  int result = RunCommand(session, kCmdAuth, "TLS");
  if (result == kFtpOk && TlsStartClient(session.control, session.host, session.tls_options,
                                         session.deadline, &session.tls_failure) != kTcpSuccess) {
    result = kFtpTlsFailed;
  }
  if (result != kFtpOk) TcpClose(&session.control);
  return result;
}

int ProtectData(FtpSession& session) {
  if (!session.tls || session.data_protected) return kFtpOk;
  int result = RunCommand(session, kCmdPbsz, "0");
  if (result == kFtpOk) result = RunCommand(session, kCmdProt, "P");
  session.data_protected = result == kFtpOk;
  return result;
}

// A failed handshake leaves the server a reply to give on the control connection (vsftpd:
// "522 SSL connection failed: session reuse required"); it is read, so the next reply
// answers the next command.
int SecureData(FtpSession& session) {
  if (!session.tls) return kFtpOk;
  std::string why;
  if (TlsStartClientAlongside(session.data_socket, session.control, session.deadline, &why) ==
      kTcpSuccess) {
    return kFtpOk;
  }
  session.tls_failure = "data connection: " + why;
  TcpClose(&session.data_socket);
  ReadReply(session);
  return kFtpTlsFailed;
}

}  // namespace transport
