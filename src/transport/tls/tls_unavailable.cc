// TLS in a build without OpenSSL (the Windows build): every attempt says it is not there.
#include "transport/tls/tls.h"

namespace transport {

bool TlsAvailable() {
  return false;
}

int TlsStartClient(Socket, const std::string&, const TlsOptions&, const Deadline&,
                   std::string* why) {
  *why = "TLS is not available in this build (it was built without OpenSSL)";
  return kTcpError;
}

int TlsStartClientAlongside(Socket, Socket, const Deadline&, std::string* why) {
  *why = "TLS is not available in this build (it was built without OpenSSL)";
  return kTcpError;
}

}  // namespace transport
