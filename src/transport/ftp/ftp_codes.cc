#include "transport/ftp/ftp_codes.h"

namespace transport {
namespace {

struct CodeText {
  int code;
  const char* text;
};

// Kept in this order, with 2 and 1004 twice, as the client has always listed them.
constexpr CodeText kTexts[] = {
    {0, "Successful function"},
    {1, "Enter a password"},
    {2, "Enter account"},
    {2, "Enter account"},
    {3, "Restart command successful"},
    {-1, "Transfer aborted by FtpAbort"},
    {4, "Server has closed the data connection"},
    {1000, "Error in parameters"},
    {1001, "User has already a FTP session"},
    {1002, "FtpInit has not been called"},
    {1003, "User is not connected to a server"},
    {1004, "Can not open specified file"},
    {1004, "Can not open specified file"},
    {1005, "Can not write into file (disk full?)"},
    {1006, "FtpRelease without FtpInit"},
    {1007, "FtpRelease without any Close"},
    {1008, "File action not taken"},
    {1009, "Server rejects userid/passwd"},
    {1010, "Server can not open remote file"},
    {1011, "Host refused the transfer"},
    {1012, "A winsock.DLL ver 1.1 is required"},
    {1013, "Close failed (cmd is in progress)"},
    {1014, "Temporary error during FtpDelete"},
    {1015, "Firewall rejects userid/passwd"},
    {1016, "Function available only in synchronous mode"},
    {1017, "TLS is not available in this build"},
    {2001, "Can not resolve host adress"},
    {2002, "Host does not send an answer"},
    {2003, "Error during connection"},
    {2004, "Host has no FTP server"},
    {2005, "Can not send data (network down)"},
    {2006, "Connection on data-port failed"},
    {2007, "Timeout occured"},
    {2008, "Error during connection with Firewall "},
    {2009, "Firewall has no FTP server"},
    {2010, "TLS negotiation failed"},
    {3001, "Answer was not expected"},
    {3002, "Host rejects the TYPE command"},
    {3003, "Command not implemented"},
    {3004, "PWD cmd OK, but answer has no directory"},
    {3005, "Server don't support passive mode"},
    {3006, "Server refuses FTP over TLS"},
    {5002, "Insuffisent free resources"},
    {5003, "Insuffisent Heap memory"},
    {5004, "No socket available"},
    {5005, "Bind is not succesful"},
    {5006, "Host system not in the list"},
};

}  // namespace

const char* FtpErrorString(int code) {
  for (const CodeText& entry : kTexts) {
    if (entry.code == code) return entry.text;
  }
  return "Unknown FTP result code";
}

}  // namespace transport
