#include "support/os/socket_shutdown.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

namespace os {

bool ShutdownSocket(SocketHandle socket) {
#ifdef _WIN32
  return shutdown(static_cast<SOCKET>(socket), SD_BOTH) == 0;
#else
  return shutdown(static_cast<int>(socket), SHUT_RDWR) == 0;
#endif
}

}  // namespace os
