// The moment by which a whole operation must be done: one reply of several lines, or the
// phases of one transfer (command reply, data connection, data). Every wait inside the
// operation asks how much time is left, so a peer that sends one byte now and then cannot
// stretch it past its time-out.
#ifndef PELICOR_TRANSPORT_TCP_DEADLINE_H_
#define PELICOR_TRANSPORT_TCP_DEADLINE_H_

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>

namespace transport {

class Deadline {
 public:
  using Clock = std::chrono::steady_clock;

  // No limit.
  Deadline() = default;
  // `seconds` from now; 0 means no limit (as the line layer's time-outs), below 0 now.
  static Deadline After(std::int64_t seconds) {
    Deadline deadline;
    if (seconds == 0) return deadline;
    deadline.limited_ = true;
    // Beyond 68 years nobody waits; the clock's arithmetic must not overflow either.
    const std::int64_t bounded = std::clamp<std::int64_t>(seconds, 0, INT_MAX);
    deadline.at_ = Clock::now() + std::chrono::seconds(bounded);
    return deadline;
  }
  static Deadline Now() { return After(-1); }

  bool Limited() const { return limited_; }
  bool Passed() const { return limited_ && Clock::now() >= at_; }
  // Milliseconds left for a wait: -1 without limit, 0 once passed.
  int RemainingMs() const {
    if (!limited_) return -1;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(at_ - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
  }

 private:
  bool limited_ = false;
  Clock::time_point at_{};
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_DEADLINE_H_
