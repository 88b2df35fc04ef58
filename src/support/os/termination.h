// Cleaning up when the user interrupts a command (Ctrl-C, kill): the files and directories this
// process made for its own use (a scratch directory, a document or download not yet complete)
// are removed before the process ends, so that an interrupted command leaves nothing behind.
//
// The list of such paths is the one piece of process-wide state of this module: a signal is
// process-wide by nature. It is guarded by a mutex, and costs nothing but the list while no
// TerminationCleanup exists (as in a host application, which handles its own signals).
#ifndef PELICOR_SUPPORT_OS_TERMINATION_H_
#define PELICOR_SUPPORT_OS_TERMINATION_H_

#include <memory>
#include <string>

namespace os {

// Notes `path` (a file or a directory with everything in it) to be removed should the process
// be told to end; Forget... takes it off the list again. Thread-safe.
void RemoveOnTermination(const std::string& path);
void ForgetOnTermination(const std::string& path);

// While this object lives, SIGINT, SIGTERM and SIGHUP (on Windows: Ctrl-C, Ctrl-Break, closing
// the console) remove every noted path and then end the process as the signal would have
// (status 128 + the signal's number in a shell). Make one, in main(), before any other thread
// starts: the signals are taken by a thread of its own.
class TerminationCleanup {
 public:
  TerminationCleanup();
  TerminationCleanup(const TerminationCleanup&) = delete;
  TerminationCleanup& operator=(const TerminationCleanup&) = delete;
  ~TerminationCleanup();

 private:
  struct Watch;
  std::unique_ptr<Watch> watch_;
};

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_TERMINATION_H_
