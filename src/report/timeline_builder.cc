#include "report/timeline_builder.h"

#include <algorithm>
#include <cmath>

namespace report {

void TimelineBuilder::Add(std::int64_t end, std::int64_t duration, std::int64_t amount,
                          std::size_t category) {
  if (amount <= 0) return;
  if (duration <= 0) duration = 1;
  std::int64_t begin = end - duration;
  if (!started_) {
    started_ = true;
    start_ = begin;
    slices_.assign(kSlices, std::vector<std::int64_t>());
  }
  // A clock that steps back (11.1.0.7 repeats tim values) lays its time at the start.
  if (begin < start_) {
    end += start_ - begin;
    begin = start_;
  }
  while (end - start_ > width_ * static_cast<std::int64_t>(kSlices)) Widen();
  // Each slice takes its share of the amount by how far the stretch has got, rounded, so the
  // parts add up to the amount exactly.
  std::int64_t at = begin;
  std::int64_t given = 0;
  while (at < end) {
    const auto slice = static_cast<std::size_t>((at - start_) / width_);
    const std::int64_t slice_end =
        std::min(end, start_ + (static_cast<std::int64_t>(slice) + 1) * width_);
    const std::int64_t due =
        slice_end == end
            ? amount
            : std::llround(static_cast<double>(amount) * static_cast<double>(slice_end - begin) /
                           static_cast<double>(end - begin));
    if (due > given) AddTo(std::min(slice, kSlices - 1), category, due - given);
    given = std::max(given, due);
    at = slice_end;
  }
}

void TimelineBuilder::AddTo(std::size_t slice, std::size_t category, std::int64_t amount) {
  std::vector<std::int64_t>& sums = slices_[slice];
  if (sums.size() <= category) sums.resize(category + 1, 0);
  sums[category] += amount;
  categories_ = std::max(categories_, category + 1);
}

void TimelineBuilder::Widen() {
  for (std::size_t i = 0; i < kSlices / 2; ++i) {
    std::vector<std::int64_t> merged = std::move(slices_[2 * i]);
    const std::vector<std::int64_t>& next = slices_[2 * i + 1];
    if (merged.size() < next.size()) merged.resize(next.size(), 0);
    for (std::size_t c = 0; c < next.size(); ++c) merged[c] += next[c];
    slices_[i] = std::move(merged);
  }
  for (std::size_t i = kSlices / 2; i < kSlices; ++i) slices_[i].clear();
  width_ *= 2;
}

Timeline TimelineBuilder::Finish(std::int64_t factor, const std::vector<std::string>& names,
                                 const std::vector<bool>& idle) const {
  Timeline timeline;
  if (!started_) return timeline;
  timeline.start = start_ * factor;
  timeline.slice = width_ * factor;
  timeline.event_names = names;
  timeline.event_idle = idle;
  std::size_t used = kSlices;
  while (used > 0 && slices_[used - 1].empty()) --used;
  for (std::size_t i = 0; i < used; ++i) {
    TimelineSlice slice;
    slice.events.assign(names.size(), 0);
    const std::vector<std::int64_t>& sums = slices_[i];
    for (std::size_t c = 0; c < sums.size(); ++c) {
      if (c == 0) {
        slice.cpu = sums[c] * factor;
      } else if (c - 1 < names.size()) {
        slice.events[c - 1] = sums[c] * factor;
      }
    }
    timeline.slices.push_back(std::move(slice));
  }
  return timeline;
}

}  // namespace report
