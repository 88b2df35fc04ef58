// Drives the FTP client through the socket layer against a scripted server on 127.0.0.3
// that answers with the fuzz input, byte for byte, then ends its side: a log-on, the simple
// commands, SIZE and a passive data connection from an offset, as the transports use them.
// Nothing may crash, overrun or wait past the time-out. (A data connection the replies point
// at goes to 127.0.0.3, where nothing else listens: it is refused at once.)
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>

#include "transport/ftp/ftp_client.h"
#include "transport/tcp/tcp.h"

namespace {

// Sends the script, ends the sending half, and reads what the client sends until it closes.
void Serve(transport::Socket listener, const std::string& script) {
  const os::SocketHandle peer = os::Accept(listener);
  if (peer == os::kNoSocket) return;
  for (std::size_t sent = 0; sent < script.size();) {
    const auto count = os::Send(peer, script.data() + sent, script.size() - sent, false);
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
  }
  os::ShutdownSend(peer);
  char sink[512];
  while (os::Receive(peer, sink, sizeof sink, os::kRecvNormal) > 0) {
  }
  os::CloseSocket(peer);
}

void RunClient(const std::string& host) {
  using namespace transport;
  FtpLogin(host.c_str(), "scott", "tiger");
  FtpCWD("udump");
  std::string text;
  FtpPWD(&text);
  FtpSyst(&text);
  std::uint64_t size = 0;
  FtpSize("ora_1.trc", &size);
  if (FtpOpenDataConnection("ora_1.trc", kFtpActionRetrieve, kFtpTypeBinary, 100) == kFtpOk) {
    char block[4096];
    int length = sizeof block;
    while (FtpRecvThroughDataConnection(block, &length) == kFtpOk) length = sizeof block;
    FtpCloseDataConnection();
  }
  FtpBytesToBeTransferred();
  FtpQuit();
  FtpCloseConnection();
}

}  // namespace

// One listener for the whole run: each input's client is its next connection.
struct Server {
  transport::Socket listener = transport::kNoSocket;
  std::string host;
};

const Server& StartOnce() {
  static const Server server = [] {
    transport::FtpInit();
    transport::FtpSetSynchronousMode();
    transport::FtpSetDataMode(transport::FtpDataMode::kPassive);
    transport::FtpSetDefaultTimeOut(1);
    Server started;
    std::uint16_t port = 0;
    transport::TcpGetListenSocket(&started.listener, nullptr, &port, 4, "127.0.0.3");
    started.host = "127.0.0.3:" + std::to_string(port);
    return started;
  }();
  return server;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Server& server = StartOnce();
  if (server.listener == transport::kNoSocket) return 0;
  std::thread serving(Serve, server.listener,
                      std::string(reinterpret_cast<const char*>(data), size));
  RunClient(server.host);
  serving.join();
  return 0;
}
