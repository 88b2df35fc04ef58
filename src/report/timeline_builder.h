// Gathers the timeline of a trace while it is read: CPU and wait time laid over a fixed number
// of equal slices of the trace clock. The slices start narrow; when a time falls past the last
// one, neighbours merge pairwise and the width doubles, so a trace of any length ends with at
// most kSlices slices and the memory stays the same.
#ifndef PELICOR_REPORT_TIMELINE_BUILDER_H_
#define PELICOR_REPORT_TIMELINE_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "report/profile.h"

namespace report {

class TimelineBuilder {
 public:
  static constexpr std::size_t kSlices = 240;

  // Spreads `amount` ticks of category `category` (0: CPU, n: event n - 1) evenly over the
  // `duration` ticks of the clock that end at `end` (a call's CPU over the call).
  void Add(std::int64_t end, std::int64_t duration, std::int64_t amount, std::size_t category);
  // The timeline in microseconds; names and idleness are given by event number.
  Timeline Finish(std::int64_t factor, const std::vector<std::string>& names,
                  const std::vector<bool>& idle) const;

 private:
  void Widen();
  void AddTo(std::size_t slice, std::size_t category, std::int64_t amount);

  bool started_ = false;
  std::int64_t start_ = 0;
  std::int64_t width_ = 1;
  std::size_t categories_ = 1;
  // One row of sums per slice, by category; a row grows when a new category reaches it.
  std::vector<std::vector<std::int64_t>> slices_;
};

}  // namespace report

#endif  // PELICOR_REPORT_TIMELINE_BUILDER_H_
