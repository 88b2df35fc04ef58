#include "report/profile.h"

#include <utility>

namespace report {

namespace {

double ShareOf(Micros part, Micros whole) {
  return whole == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(whole);
}

// CPU, the events in their order, and the rest of `whole` as unaccounted-for time; idle events
// go last when `with_idle`, and are left out (they are no part of `whole`) otherwise.
std::vector<Component> SplitOf(Micros whole, Micros cpu, std::uint64_t calls,
                               const std::vector<EventFigures>& events, bool with_idle) {
  std::vector<Component> lines;
  lines.push_back({ComponentKind::kCpu, "CPU in database calls", cpu, calls, ShareOf(cpu, whole)});
  Micros rest = whole - cpu;
  std::vector<Component> idle;
  for (const EventFigures& event : events) {
    if (event.idle) {
      if (with_idle) {
        idle.push_back({ComponentKind::kIdle, event.name, event.total, event.count,
                        ShareOf(event.total, whole)});
        rest -= event.total;
      }
      continue;
    }
    lines.push_back(
        {ComponentKind::kWait, event.name, event.total, event.count, ShareOf(event.total, whole)});
    rest -= event.total;
  }
  lines.push_back({ComponentKind::kUnaccounted, "unaccounted-for", rest, 0, ShareOf(rest, whole)});
  for (Component& line : idle) lines.push_back(std::move(line));
  return lines;
}

}  // namespace

const char* HistogramLabel(std::size_t bucket) {
  static constexpr const char* kLabels[kHistogramBuckets] = {"<1us", "1us",  "10us",  "100us",
                                                             "1ms",  "10ms", "100ms", ">=1s"};
  return bucket < kHistogramBuckets ? kLabels[bucket] : "";
}

std::vector<Component> StatementProfile::Split() const {
  const std::uint64_t count =
      calls[kParseCall].count + calls[kExecCall].count + calls[kFetchCall].count;
  return SplitOf(elapsed, cpu, count, inclusive_waits, false);
}

Micros Profile::Unaccounted() const {
  Micros rest = response_time - cpu;
  for (const EventFigures& event : events) rest -= event.total;
  return rest;
}

std::vector<Component> Profile::Components() const {
  return SplitOf(response_time, cpu, calls, events, true);
}

}  // namespace report
