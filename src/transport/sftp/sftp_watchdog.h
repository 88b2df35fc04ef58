// The time-out of a blocking SFTP request. libssh waits for the server's answer without limit
// once a request is sent, so a server (or a network) that goes silent in the middle of a
// transfer would hang the reader for good. A watchdog thread ends the connection's socket when
// a request has waited longer than the time-out; the blocked call then fails like a lost
// connection, and Fired() tells the two apart. Internal.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_WATCHDOG_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_WATCHDOG_H_

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "support/os/socket.h"

namespace transport::sftp {

class Watchdog {
 public:
  // Watches `socket`; a request may wait `timeout_seconds` (at least 1).
  Watchdog(os::SocketHandle socket, int timeout_seconds);
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog();  // stops the thread

  // Starts the clock for one request; the request is over when the guard goes.
  class Guard {
   public:
    explicit Guard(Watchdog& watchdog) : watchdog_(watchdog) { watchdog_.Arm(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() { watchdog_.Disarm(); }

   private:
    Watchdog& watchdog_;
  };

  // True once a request outlasted the time-out (the socket is shut down since).
  bool Fired() const;
  int timeout_seconds() const { return static_cast<int>(timeout_.count()); }

 private:
  void Arm();
  void Disarm();
  void Run();

  const os::SocketHandle socket_;
  const std::chrono::seconds timeout_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool armed_ = false;
  bool fired_ = false;
  bool stopping_ = false;
  std::chrono::steady_clock::time_point deadline_;
  std::thread thread_;  // last: starts once the fields above are ready
};

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_WATCHDOG_H_
