#include "support/os/termination.h"

#include <atomic>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#include <signal.h>
#endif

namespace os {

namespace {

struct NotedPaths {
  std::mutex mutex;
  std::set<std::string> paths;
};

NotedPaths& Noted() {
  static NotedPaths noted;
  return noted;
}

// Called on the way out: the process ends right after, whatever the main thread is doing.
void RemoveNoted() {
  NotedPaths& noted = Noted();
  std::lock_guard<std::mutex> lock(noted.mutex);
  for (const std::string& path : noted.paths) {
    // The main thread may still be adding a file to a directory being removed: try again.
    for (int attempt = 0; attempt < 3; ++attempt) {
      std::error_code error;
      std::filesystem::remove_all(path, error);
      if (!error) break;
    }
  }
  noted.paths.clear();
}

}  // namespace

void RemoveOnTermination(const std::string& path) {
  NotedPaths& noted = Noted();
  std::lock_guard<std::mutex> lock(noted.mutex);
  noted.paths.insert(path);
}

void ForgetOnTermination(const std::string& path) {
  NotedPaths& noted = Noted();
  std::lock_guard<std::mutex> lock(noted.mutex);
  noted.paths.erase(path);
}

#ifdef _WIN32

struct TerminationCleanup::Watch {};

namespace {

// Runs on a thread the system starts for the event; returning FALSE lets the next handler (the
// default one, which ends the process) have it.
BOOL WINAPI OnConsoleEvent(DWORD /*event*/) {
  RemoveNoted();
  return FALSE;
}

}  // namespace

TerminationCleanup::TerminationCleanup() {
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

TerminationCleanup::~TerminationCleanup() {
  SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
}

#else

// The signals are blocked in every thread and taken by one thread with sigwait(), so the
// clean-up runs as ordinary code rather than in a signal handler.
struct TerminationCleanup::Watch {
  sigset_t signals{};
  sigset_t previous{};
  std::atomic<bool> stopping{false};
  std::thread thread;

  void Run() {
    for (;;) {
      int signal_number = 0;
      if (sigwait(&signals, &signal_number) != 0) continue;
      if (stopping) return;
      RemoveNoted();
      // End as the signal would have: its default action, delivered to this thread.
      struct sigaction fallback {};
      fallback.sa_handler = SIG_DFL;
      sigaction(signal_number, &fallback, nullptr);
      sigset_t only{};
      sigemptyset(&only);
      sigaddset(&only, signal_number);
      pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
      raise(signal_number);
    }
  }
};

TerminationCleanup::TerminationCleanup() : watch_(std::make_unique<Watch>()) {
  sigemptyset(&watch_->signals);
  for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&watch_->signals, signal_number);
  }
  pthread_sigmask(SIG_BLOCK, &watch_->signals, &watch_->previous);
  watch_->thread = std::thread([watch = watch_.get()] { watch->Run(); });
}

TerminationCleanup::~TerminationCleanup() {
  watch_->stopping = true;
  pthread_kill(watch_->thread.native_handle(), SIGTERM);
  watch_->thread.join();
  pthread_sigmask(SIG_SETMASK, &watch_->previous, nullptr);
}

#endif

}  // namespace os
