// Result codes of the FTP command client and their texts. 0 is success; codes 4 and the
// 2000s come from the network, the 1000s from use and local files, the 3000s from the
// server's protocol, the 5000s from local resources.
#ifndef PELICOR_TRANSPORT_FTP_FTP_CODES_H_
#define PELICOR_TRANSPORT_FTP_FTP_CODES_H_

namespace transport {

enum FtpResult : int {
  kFtpOk = 0,
  kFtpPasswordWanted = 1,
  kFtpAccountWanted = 2,
  kFtpRestartOk = 3,
  kFtpAborted = -1,
  kFtpDataClosed = 4,
  kFtpBadParameters = 1000,
  kFtpAlreadyInitialised = 1001,
  kFtpNotInitialised = 1002,
  kFtpNotConnected = 1003,
  kFtpCannotOpenFile = 1004,
  kFtpCannotWriteFile = 1005,
  kFtpReleaseWithoutInit = 1006,
  kFtpReleaseWithoutClose = 1007,
  kFtpActionNotTaken = 1008,
  kFtpLoginRejected = 1009,
  kFtpCannotOpenRemote = 1010,
  kFtpTransferRefused = 1011,
  kFtpSocketLibrary = 1012,
  kFtpCloseFailed = 1013,
  kFtpTemporaryDeleteError = 1014,
  kFtpFirewallRejects = 1015,
  kFtpSynchronousOnly = 1016,
  kFtpTlsUnavailable = 1017,
  kFtpUnknownHost = 2001,
  kFtpNoAnswer = 2002,
  kFtpConnectError = 2003,
  kFtpNoServer = 2004,
  kFtpCannotSend = 2005,
  kFtpDataConnectionFailed = 2006,
  kFtpTimeout = 2007,
  kFtpFirewallConnectError = 2008,
  kFtpFirewallNoServer = 2009,
  kFtpTlsFailed = 2010,  // FtpLastTlsFailure says why
  kFtpUnexpectedAnswer = 3001,
  kFtpTypeRejected = 3002,
  kFtpNotImplemented = 3003,
  kFtpPwdWithoutDirectory = 3004,
  kFtpNoPassiveMode = 3005,
  kFtpTlsRefused = 3006,  // AUTH TLS, PBSZ or PROT refused
  kFtpNoResources = 5002,
  kFtpNoHeapMemory = 5003,
  kFtpNoSocket = 5004,
  kFtpBindFailed = 5005,
  kFtpHostNotListed = 5006,
};

// The client's message for a result code, e.g. "Server rejects userid/passwd" for 1009;
// "Unknown FTP result code" for a code outside the table. Never null.
const char* FtpErrorString(int code);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_FTP_CODES_H_
