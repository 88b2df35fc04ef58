// The FTP commands the client sends and how each maps the server's reply code to a result
// code (ftp_codes.h). A reply code of -1 stands for no reply at all, 0 for a reply that does
// not start with a number; a reply code a row does not list gives 3001.
#ifndef PELICOR_TRANSPORT_FTP_COMMAND_TABLE_H_
#define PELICOR_TRANSPORT_FTP_COMMAND_TABLE_H_

#include <string>

namespace transport {

enum FtpCommand : int {
  kCmdGreeting = 0,  // no command: reads the server's greeting
  kCmdUser,
  kCmdPass,
  kCmdAcct,
  kCmdQuit,
  kCmdHelp,
  kCmdHelpTopic,
  kCmdDele,
  kCmdCwd,
  kCmdCdup,
  kCmdMkd,
  kCmdRmd,
  kCmdPwd,
  kCmdType,
  kCmdRnfr,
  kCmdRnto,
  kCmdSyst,
  kCmdNoop,
  kCmdRest,
  kCmdEndOfTransfer,  // no command: reads the reply that ends a transfer
  kCmdAuth,           // FTP over TLS (RFC 4217): AUTH TLS, PBSZ 0, PROT P
  kCmdPbsz,
  kCmdProt,
  kCommandCount
};

constexpr int kNoReply = -1;
constexpr int kReplyNotNumber = 0;

// The command line of a row ("CWD udump"); empty for the rows that only read a reply.
std::string CommandLine(FtpCommand command, const char* argument);
// The result code of a reply code under a row.
int MapReply(FtpCommand command, int reply_code);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_COMMAND_TABLE_H_
