// The process-wide table of open sockets of the TCP line layer: 512 entries, each a socket,
// its state and the thread that registered it. Thread-safe. It lets TcpClose tell a listening
// socket from a connected one and lets TcpCleanup close what a thread left open.
#ifndef PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_
#define PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_

#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

#include "support/os/socket.h"

namespace transport {

enum SocketState : int { kSocketFree = 0, kSocketListening = 12, kSocketConnected = 13 };

class SocketRegistry {
 public:
  static constexpr std::size_t kCapacity = 512;

  static SocketRegistry& Instance();

  // Fills the table with free entries, once.
  void Prepare();
  // Registers a socket for the calling thread; false (and not registered) when the table is
  // full or not prepared.
  bool Add(os::SocketHandle socket, SocketState state);
  void Remove(os::SocketHandle socket);
  // The state of a registered socket; kSocketFree when it is not in the table.
  SocketState StateOf(os::SocketHandle socket) const;
  // Removes and returns the sockets the calling thread registered.
  std::vector<os::SocketHandle> TakeThreadSockets();

 private:
  struct Entry {
    os::SocketHandle socket = os::kNoSocket;
    SocketState state = kSocketFree;
    std::thread::id owner;
  };
  mutable std::mutex mutex_;
  std::vector<Entry> entries_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_
