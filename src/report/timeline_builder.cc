#include "report/timeline_builder.h"

#include <algorithm>

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
  std::int64_t at = begin;
  std::int64_t left = amount;
  while (at < end && left > 0) {
    const auto slice = static_cast<std::size_t>((at - start_) / width_);
    const std::int64_t slice_end = start_ + (static_cast<std::int64_t>(slice) + 1) * width_;
    const std::int64_t covered = std::min(end, slice_end) - at;
    // The slice's part of the amount, in proportion; the last slice takes what is left.
    std::int64_t part = left;
    if (std::min(end, slice_end) < end) {
      part = static_cast<std::int64_t>(static_cast<double>(amount) * static_cast<double>(covered) /
                                       static_cast<double>(duration));
      part = std::min(part, left);
    }
    AddTo(std::min(slice, kSlices - 1), category, part);
    left -= part;
    at += covered;
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
