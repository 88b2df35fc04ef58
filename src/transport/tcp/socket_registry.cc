#include "transport/tcp/socket_registry.h"

#include <utility>

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
    entry = Entry{socket, state, std::this_thread::get_id(), nullptr};
    return true;
  }
  return false;
}

void SocketRegistry::Clear(Entry& entry, std::vector<std::shared_ptr<SocketChannel>>* ended) {
  if (entry.channel) {
    ended->push_back(std::move(entry.channel));
    --channels_;
  }
  entry = Entry{};
}

void SocketRegistry::Remove(os::SocketHandle socket) {
  std::vector<std::shared_ptr<SocketChannel>> ended;
  std::lock_guard<std::mutex> lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.socket == socket) Clear(entry, &ended);
  }
}

bool SocketRegistry::Attach(os::SocketHandle socket, std::shared_ptr<SocketChannel> channel) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.socket != socket) continue;
    if (!entry.channel) ++channels_;
    entry.channel = std::move(channel);
    return true;
  }
  return false;
}

std::shared_ptr<SocketChannel> SocketRegistry::ChannelOf(os::SocketHandle socket) const {
  if (channels_.load() == 0) return nullptr;
  std::lock_guard<std::mutex> lock(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.socket == socket) return entry.channel;
  }
  return nullptr;
}

SocketState SocketRegistry::StateOf(os::SocketHandle socket) const {
  std::lock_guard<std::mutex> lock(mutex_);
  for (const Entry& entry : entries_) {
    if (entry.socket == socket) return entry.state;
  }
  return kSocketFree;
}

std::vector<os::SocketHandle> SocketRegistry::TakeThreadSockets() {
  std::vector<std::shared_ptr<SocketChannel>> ended;
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<os::SocketHandle> taken;
  for (Entry& entry : entries_) {
    if (entry.socket == os::kNoSocket || entry.owner != std::this_thread::get_id()) continue;
    taken.push_back(entry.socket);
    Clear(entry, &ended);
  }
  return taken;
}

}  // namespace transport
