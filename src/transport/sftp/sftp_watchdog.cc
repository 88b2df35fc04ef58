#include "transport/sftp/sftp_watchdog.h"

#include "support/os/socket_shutdown.h"

namespace transport::sftp {

Watchdog::Watchdog(os::SocketHandle socket, int timeout_seconds)
    : socket_(socket),
      timeout_(timeout_seconds > 0 ? timeout_seconds : 1),
      thread_([this] { Run(); }) {}

Watchdog::~Watchdog() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

bool Watchdog::Fired() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return fired_;
}

void Watchdog::Arm() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    armed_ = true;
    deadline_ = std::chrono::steady_clock::now() + timeout_;
  }
  changed_.notify_one();
}

void Watchdog::Disarm() {
  // The thread finds out at its next wake-up; no need to wake it now.
  const std::lock_guard<std::mutex> lock(mutex_);
  armed_ = false;
}

void Watchdog::Run() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!stopping_) {
    if (!armed_ || fired_) {
      changed_.wait(lock);
      continue;
    }
    const auto deadline = deadline_;
    if (changed_.wait_until(lock, deadline) == std::cv_status::timeout && armed_ &&
        deadline_ == deadline) {
      fired_ = true;
      os::ShutdownSocket(socket_);
    }
  }
}

}  // namespace transport::sftp
