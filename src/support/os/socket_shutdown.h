// Ends both directions of a connected socket without closing its handle, so that a call
// blocked on it in another thread (a library's own receive loop) returns at once, while the
// handle stays valid for its owner to close.
#ifndef PELICOR_SUPPORT_OS_SOCKET_SHUTDOWN_H_
#define PELICOR_SUPPORT_OS_SOCKET_SHUTDOWN_H_

#include "support/os/socket.h"

namespace os {

// False when the platform refuses (the socket is not connected, the handle is not a socket).
bool ShutdownSocket(SocketHandle socket);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_SOCKET_SHUTDOWN_H_
