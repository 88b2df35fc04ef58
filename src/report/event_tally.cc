#include "report/event_tally.h"

namespace report {

namespace {

// Decimal digits of a positive value (0 for 0 and below); most waits have few.
std::size_t Digits(std::int64_t value) {
  std::size_t digits = 0;
  for (std::int64_t power = 1; value >= power && digits < 18; power *= 10) ++digits;
  return value >= 1000000000000000000 ? 19 : digits;
}

}  // namespace

void EventTally::Add(std::int64_t ela) {
  ++count;
  total += ela;
  if (ela > max) max = ela;
  ++digits[Digits(ela)];
}

void EventTally::Merge(const EventTally& other) {
  count += other.count;
  total += other.total;
  if (other.max > max) max = other.max;
  for (std::size_t i = 0; i < digits.size(); ++i) digits[i] += other.digits[i];
}

EventFigures EventTally::Figures(std::string name, bool idle, std::int64_t factor,
                                 int decades) const {
  EventFigures figures;
  figures.name = std::move(name);
  figures.idle = idle;
  figures.count = count;
  figures.total = total * factor;
  figures.max = max * factor;
  // d digits in ticks: at least 10^(d-1) ticks, 10^(d-1+decades) microseconds, which is
  // bucket d + decades (bucket 1 starts at 1 us).
  for (std::size_t d = 0; d < digits.size(); ++d) {
    std::size_t bucket = d == 0 ? 0 : d + static_cast<std::size_t>(decades);
    if (bucket >= kHistogramBuckets) bucket = kHistogramBuckets - 1;
    figures.histogram[bucket] += digits[d];
  }
  return figures;
}

EventTally& EventTallies::At(std::size_t event) {
  for (auto& entry : entries_) {
    if (entry.first == event) return entry.second;
  }
  entries_.emplace_back(event, EventTally{});
  return entries_.back().second;
}

}  // namespace report
