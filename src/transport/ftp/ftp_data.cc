// Opening the data connection of a transfer: type, local file, PASV or PORT, REST, the
// command itself and its preliminary reply.
#include <string>

#include "transport/ftp/ftp_session.h"
#include "transport/ftp/reply_parse.h"

namespace transport {
namespace {

// Local file actions of a transfer.
constexpr int kFileCreate = 32;
constexpr int kFileRead = 216;
constexpr int kFileAppend = 467;

os::FileHandle OpenLocal(const char* path, int action) {
  switch (action) {
    case kFileCreate:
      return os::CreateFileForWrite(path);
    case kFileRead:
      return os::OpenFileForRead(path);
    case kFileAppend:
      return os::OpenFileForAppend(path);
    default:
      return os::kNoFile;
  }
}

bool Refused(int reply) {
  return reply == 500 || reply == 501 || reply == 502;
}

// Connects the data connection to the control connection's peer on `port`.
int ConnectData(FtpSession& session, std::uint16_t port) {
  os::Endpoint peer;
  if (!os::PeerEndpoint(session.control, &peer)) return kFtpNoSocket;
  const std::string host = os::AddressText(peer);
  const int status =
      TcpConnect(&session.data_socket, host.c_str(), nullptr, &port, session.deadline);
  if (status == kTcpSuccess) return kFtpOk;
  return status == kTcpTimeout ? kFtpTimeout : kFtpNoSocket;
}

//   229 Entering Extended Passive Mode (|||6446|)
// 3005 when the server does not know EPSV; it is not asked again in this session.
int OpenExtendedPassive(FtpSession& session) {
  if (const int sent = SendLine(session, "EPSV"); sent != kFtpOk) return sent;
  const int reply = ReadReply(session);
  if (Refused(reply)) {
    session.epsv_refused = true;
    return kFtpNoPassiveMode;
  }
  std::uint16_t port = 0;
  if (reply == kNoReply) return kFtpNoAnswer;
  if (reply != 229 || !ParseExtendedPassiveReply(session.reply.data(), &port)) {
    return kFtpUnexpectedAnswer;
  }
  return ConnectData(session, port);
}

//   227 Entering Passive Mode (192,168,10,5,195,80).
// Only the port is taken: the data connection goes to the address the control connection
// reached, as a server behind NAT announces an address we cannot reach and a hostile one
// could point us at another host.
int OpenPassive(FtpSession& session) {
  if (!session.epsv_refused) {
    const int extended = OpenExtendedPassive(session);
    if (extended != kFtpNoPassiveMode) return extended;
  }
  os::Endpoint local;
  // PASV names an IPv4 address: over IPv6 only EPSV can work.
  if (os::LocalEndpoint(session.control, &local) && local.v6) return kFtpNoPassiveMode;
  if (const int sent = SendLine(session, "PASV"); sent != kFtpOk) return sent;
  const int reply = ReadReply(session);
  if (reply == 500 || reply == 502) return kFtpNoPassiveMode;
  std::string announced;
  std::uint16_t port = 0;
  if (reply != 227 || !ParsePassiveReply(session.reply.data(), &announced, &port)) {
    return kFtpUnexpectedAnswer;
  }
  return ConnectData(session, port);
}

// The command that announces a listener:
//   PORT 127,0,0,1,195,80
//   EPRT |2|::1|50000|
std::string AnnounceCommand(const os::Endpoint& local, std::uint16_t port) {
  if (local.v6) return "EPRT |2|" + os::AddressText(local) + "|" + std::to_string(port) + "|";
  std::string line = "PORT ";
  for (int i = 0; i < 4; ++i) line += std::to_string(local.address[i]) + ",";
  return line + std::to_string(port >> 8) + "," + std::to_string(port & 0xff);
}

// Listens on the control connection's local address and announces it.
int OpenActive(FtpSession& session) {
  os::Endpoint local;
  if (!os::LocalEndpoint(session.control, &local)) return kFtpDataConnectionFailed;
  const std::string address = os::AddressText(local);
  std::uint16_t port = 0;
  if (TcpGetListenSocket(&session.listener, nullptr, &port, 1, address.c_str()) != kTcpSuccess) {
    return kFtpDataConnectionFailed;
  }
  int result = SendLine(session, AnnounceCommand(local, port));
  if (result == kFtpOk && ReadReply(session) != 200) result = kFtpUnexpectedAnswer;
  if (result != kFtpOk) TcpClose(&session.listener);
  return result;
}

int OpenDataPath(FtpSession& session) {
  if (session.data_mode == FtpDataMode::kActive) return OpenActive(session);
  const int passive = OpenPassive(session);
  if (passive != kFtpNoPassiveMode || session.data_mode != FtpDataMode::kPassiveThenActive) {
    return passive;
  }
  return OpenActive(session);
}

// Waits for the server's data connection; a connection from any other address is refused.
int AcceptData(FtpSession& session) {
  os::Endpoint server;
  const bool known = os::PeerEndpoint(session.control, &server);
  const int accepted = TcpAcceptBy(&session.data_socket, session.listener, session.deadline,
                                   known ? &server : nullptr);
  TcpClose(&session.listener);
  return accepted;
}

// The result of a refused RETR, LIST or NLST.
int RefusedResult(int reply) {
  switch (reply) {
    case kNoReply:
      return kFtpNoAnswer;
    case 550:
      return kFtpCannotOpenRemote;
    case 553:
      return kFtpTransferRefused;
    default:
      return kFtpUnexpectedAnswer;
  }
}

void DropTransfer(FtpSession& session) {
  CloseLocalFile(session);
  TcpClose(&session.data_socket);
  TcpClose(&session.listener);
}

// A data connection left open (a stream the caller never closed) still owes its final
// reply; reading it keeps the next reply in step with the next command. Over TLS the transfer
// is stopped with ABOR: proftpd takes a secured data connection closed under its writes for
// an attack and drops the whole session ("mod_tls: unexpected OpenSSL error, disconnecting").
void FinishLeftoverTransfer(FtpSession& session) {
  if (session.data_socket == kNoSocket) return;
  if (session.tls && !session.data_stalled) {
    AbortAction(session, true, false, 30);
    return;
  }
  TcpClose(&session.data_socket);
  if (!session.data_stalled) ReadReply(session);
}

}  // namespace

int SetType(FtpSession& session, char type) {
  if (type == session.type) return kFtpOk;
  const std::string argument = type == kFtpTypeLocal ? "L 8" : std::string(1, type);
  const int result = RunCommand(session, kCmdType, argument.c_str());
  if (result == kFtpOk) session.type = type;
  return result;
}

int Restart(FtpSession& session, std::int64_t offset) {
  if (offset < 1) return kFtpRestartOk;
  return RunCommand(session, kCmdRest, std::to_string(offset).c_str());
}

int OpenDataConnection(FtpSession& session, const std::string& command, const char* local,
                       int file_action, char type, std::int64_t offset) {
  if (session.control == kNoSocket) return kFtpNotConnected;
  FinishLeftoverTransfer(session);
  CloseLocalFile(session);
  session.aborted = false;
  session.data_stalled = false;
  if (type == kFtpTypeBinary || type == kFtpTypeAscii || type == kFtpTypeLocal) {
    if (const int result = SetType(session, type); result != kFtpOk) return result;
  }
  if (local != nullptr) {
    session.local_file = OpenLocal(local, file_action);
    if (session.local_file == os::kNoFile) return kFtpCannotOpenFile;
  }
  int result = ProtectData(session);
  if (result == kFtpOk) result = OpenDataPath(session);
  if (result == kFtpOk && offset > 0) {
    result = Restart(session, offset);
    if (result == kFtpRestartOk) result = kFtpOk;
  }
  if (result == kFtpOk) result = SendLine(session, command);
  if (result == kFtpOk) {
    const int reply = ReadReply(session);
    if (reply != 150 && reply != 125) result = RefusedResult(reply);
  }
  if (result != kFtpOk) {
    DropTransfer(session);
    return result;
  }
  if (session.listener != kNoSocket) {
    if (AcceptData(session) != kTcpSuccess) {
      CloseLocalFile(session);
      return session.aborted ? kFtpAborted : kFtpDataConnectionFailed;
    }
  }
  result = SecureData(session);
  if (result != kFtpOk) CloseLocalFile(session);
  return result;
}

}  // namespace transport
