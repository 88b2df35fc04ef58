// A progress line on standard error for long work ("parsing big.trc: 42% (126 of 300 MB)"),
// shown only when standard error is a terminal and the work is large enough to notice.
#ifndef PELICOR_CLI_PROGRESS_H_
#define PELICOR_CLI_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <string>

namespace cli {

class ProgressMeter {
 public:
  // Shows progress for `total_bytes` of work on `what`; silent when the total is below
  // `threshold_bytes` or standard error is not a terminal.
  ProgressMeter(std::string what, std::uint64_t total_bytes,
                std::uint64_t threshold_bytes = 32u << 20);
  ProgressMeter(const ProgressMeter&) = delete;
  ProgressMeter& operator=(const ProgressMeter&) = delete;
  ~ProgressMeter();  // clears the line

  // Bytes done so far; redraws at most a few times a second.
  void Update(std::uint64_t done_bytes);

 private:
  void Draw(std::uint64_t done_bytes);

  std::string what_;
  std::uint64_t total_;
  bool enabled_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point last_draw_;
};

}  // namespace cli

#endif  // PELICOR_CLI_PROGRESS_H_
