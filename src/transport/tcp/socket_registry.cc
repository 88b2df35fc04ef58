#include "transport/tcp/socket_registry.h"

namespace transport {

SocketRegistry& SocketRegistry::Instance() {
  static SocketRegistry registry;
  return registry;
}

void SocketRegistry::Prepare() {
  std::lock_guard<std::mutex> lock(mutex_);
  if (entries_.empty()) entries_.resize(kCapacity);
}

bool SocketRegistry::Add(os::SocketHandle socket, SocketState state) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.socket != os::kNoSocket) continue;
    entry = Entry{socket, state, std::this_thread::get_id()};
    return true;
  }
  return false;
}

void SocketRegistry::Remove(os::SocketHandle socket) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.socket == socket) entry = Entry{};
  }
}

SocketState SocketRegistry::StateOf(os::SocketHandle socket) const {
  std::lock_guard<std::mutex> lock(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.socket == socket) return entry.state;
  }
  return kSocketFree;
}

std::vector<os::SocketHandle> SocketRegistry::TakeThreadSockets() {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<os::SocketHandle> taken;
  for (Entry& entry : entries_) {
    if (entry.socket == os::kNoSocket || entry.owner != std::this_thread::get_id()) continue;
    taken.push_back(entry.socket);
    entry = Entry{};
  }
  return taken;
}

}  // namespace transport
