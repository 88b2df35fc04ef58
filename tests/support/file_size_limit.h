// A full disk for one test: while the object lives, a write that would make any file of this
// process larger than the limit fails (EFBIG, "File too large"), as the system's own
// file-size limit makes it. POSIX only.
#ifndef PELICOR_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_
#define PELICOR_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_

#include <signal.h>
#include <sys/resource.h>

namespace pelicor_test {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    // The signal the limit raises would end the test; the failed write is what we want.
    previous_handler_ = signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &previous_);
    rlimit limit = previous_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &previous_);
    signal(SIGXFSZ, previous_handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit previous_{};
  void (*previous_handler_)(int) = nullptr;
};

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_SUPPORT_FILE_SIZE_LIMIT_H_
