// A connected pair of sockets on 127.0.0.1 made with the TCP line layer itself, and a peer
// that writes chunks with pauses between them, so one piece of data spans several reads; and
// the line layer's trace captured for one test.
#ifndef PELICOR_TESTS_TRANSPORT_LOOPBACK_H_
#define PELICOR_TESTS_TRANSPORT_LOOPBACK_H_

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "transport/tcp/tcp.h"

namespace pelicor_test {

class Loopback {
 public:
  Loopback() {
    transport::TcpInit();
    transport::Socket listener = transport::kNoSocket;
    std::uint16_t port = 0;
    EXPECT_EQ(transport::TcpGetListenSocket(&listener, nullptr, &port, 1, "127.0.0.1"), 1);
    EXPECT_EQ(transport::TcpConnect(&reader_, "127.0.0.1", nullptr, &port), 1);
    EXPECT_EQ(transport::TcpAccept(&writer_, listener, 5), 1);
    transport::TcpClose(&listener);
  }
  ~Loopback() {
    if (peer_.joinable()) peer_.join();
    transport::TcpClose(&reader_);
    transport::TcpClose(&writer_);
  }
  Loopback(const Loopback&) = delete;
  Loopback& operator=(const Loopback&) = delete;

  // Sends the chunks 30 ms apart from another thread, then closes when asked to.
  void Write(std::vector<std::string> chunks, bool close_after = false) {
    peer_ = std::thread([this, chunks = std::move(chunks), close_after] {
      for (const std::string& chunk : chunks) {
        transport::TcpSend(writer_, chunk.data(), static_cast<int>(chunk.size()), false,
                           transport::kNoLog);
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
      }
      if (close_after) transport::TcpClose(&writer_);
    });
  }
  void WaitForWriter() {
    if (peer_.joinable()) peer_.join();
  }
  // Whatever the reader has not consumed yet (waits until the writer is done).
  std::string Rest() {
    WaitForWriter();
    std::string rest;
    char block[256];
    while (transport::TcpIsDataAvail(reader_)) {
      const int count = transport::TcpRecv(reader_, block, sizeof block, 1, transport::kNoLog);
      if (count <= 0) break;
      rest.append(block, static_cast<std::size_t>(count));
    }
    return rest;
  }
  transport::Socket reader() const { return reader_; }
  transport::Socket writer() const { return writer_; }

 private:
  transport::Socket reader_ = transport::kNoSocket;
  transport::Socket writer_ = transport::kNoSocket;
  std::thread peer_;
};

// What the line layer traces (`mask`) while the object lives; the process-wide settings are
// put back afterwards.
class TraceCapture {
 public:
  explicit TraceCapture(unsigned mask) {
    transport::TcpSetTraceSink(sink_);
    transport::TcpSetTraceMask(mask);
  }
  ~TraceCapture() {
    transport::TcpSetTraceMask(0);
    transport::TcpSetTraceSink(nullptr);
  }
  const std::string& text() const { return sink_->text; }

 private:
  struct Sink : transport::TraceSink {
    void Write(std::string_view piece) override { text.append(piece); }
    std::string text;
  };
  std::shared_ptr<Sink> sink_ = std::make_shared<Sink>();
};

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_TRANSPORT_LOOPBACK_H_
