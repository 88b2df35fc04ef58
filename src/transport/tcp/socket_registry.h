// The process-wide table of open sockets of the TCP line layer: 512 entries, each a socket,
// its state, the thread that registered it and the channel (TLS) its bytes go through, if any.
// Thread-safe. It lets TcpClose tell a listening socket from a connected one, lets TcpCleanup
// close what a thread left open, and lets every receive and send find the socket's channel.
#ifndef PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_
#define PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "support/os/socket.h"
#include "transport/tcp/socket_channel.h"

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
  // Removes the socket with its channel.
  void Remove(os::SocketHandle socket);
  // Routes the registered socket's bytes through `channel` from now on; false when the socket
  // is not registered.
  bool Attach(os::SocketHandle socket, std::shared_ptr<SocketChannel> channel);
  // The socket's channel; null for a socket whose bytes go straight through.
  std::shared_ptr<SocketChannel> ChannelOf(os::SocketHandle socket) const;
  // The state of a registered socket; kSocketFree when it is not in the table.
  SocketState StateOf(os::SocketHandle socket) const;
  // Removes and returns the sockets the calling thread registered.
  std::vector<os::SocketHandle> TakeThreadSockets();

 private:
  struct Entry {
    os::SocketHandle socket = os::kNoSocket;
    SocketState state = kSocketFree;
    std::thread::id owner;
    std::shared_ptr<SocketChannel> channel;
  };
  // Ends the channels of removed entries outside the lock.
  void Clear(Entry& entry, std::vector<std::shared_ptr<SocketChannel>>* ended);

  mutable std::mutex mutex_;
  std::vector<Entry> entries_;
  // Entries with a channel: while there are none, plain sockets skip the look-up.
  std::atomic<int> channels_{0};
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_SOCKET_REGISTRY_H_
