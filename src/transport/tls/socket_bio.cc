#include "transport/tls/socket_bio.h"

#include <memory>

namespace transport::tls {
namespace {

SocketLink* LinkOf(BIO* bio) {
  return static_cast<SocketLink*>(BIO_get_data(bio));
}

void NoteFailure(SocketLink* link) {
  link->cancelled = os::IsCancelled(os::LastSocketError());
}

int Read(BIO* bio, char* buffer, int size) {
  SocketLink* link = LinkOf(bio);
  BIO_clear_retry_flags(bio);
  if (buffer == nullptr || size <= 0) return 0;
  const int ready = os::WaitReadable(link->socket, link->deadline.RemainingMs());
  if (ready == 0) {
    link->timed_out = true;
    BIO_set_retry_read(bio);
    return -1;
  }
  const std::ptrdiff_t count =
      ready < 0
          ? -1
          : os::Receive(link->socket, buffer, static_cast<std::size_t>(size), os::kRecvNormal);
  if (count < 0) NoteFailure(link);
  return static_cast<int>(count);
}

int Write(BIO* bio, const char* buffer, int size) {
  SocketLink* link = LinkOf(bio);
  BIO_clear_retry_flags(bio);
  if (size <= 0) return 0;
  const std::ptrdiff_t count =
      os::Send(link->socket, buffer, static_cast<std::size_t>(size), false);
  if (count < 0) NoteFailure(link);
  return static_cast<int>(count);
}

// Writes go out at once, so there is nothing to flush; no other control is needed by TLS.
long Control(BIO*, int command, long, void*) {
  return command == BIO_CTRL_FLUSH ? 1 : 0;
}

struct MethodFree {
  void operator()(BIO_METHOD* method) const { BIO_meth_free(method); }
};

BIO_METHOD* MakeMethod() {
  const int index = BIO_get_new_index();
  if (index < 0) return nullptr;
  BIO_METHOD* method = BIO_meth_new(index | BIO_TYPE_SOURCE_SINK, "pelicor socket");
  if (method == nullptr) return nullptr;
  BIO_meth_set_read(method, Read);
  BIO_meth_set_write(method, Write);
  BIO_meth_set_ctrl(method, Control);
  return method;
}

// Made once, never changed after.
const BIO_METHOD* SocketMethod() {
  static const std::unique_ptr<BIO_METHOD, MethodFree> method(MakeMethod());
  return method.get();
}

}  // namespace

BIO* NewSocketBio(SocketLink* link) {
  const BIO_METHOD* method = SocketMethod();
  BIO* bio = method != nullptr ? BIO_new(method) : nullptr;
  if (bio == nullptr) return nullptr;
  BIO_set_data(bio, link);
  BIO_set_init(bio, 1);
  return bio;
}

}  // namespace transport::tls
