// Running sums of wait events while a trace is read, in the trace's own clock ticks (the unit
// is known for sure only at the end: a trace without a banner tells it by its figures). The
// histogram counts waits by the number of decimal digits of their ela, which becomes a decade
// bucket in microseconds once the unit is known.
#ifndef PELICOR_REPORT_EVENT_TALLY_H_
#define PELICOR_REPORT_EVENT_TALLY_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "report/profile.h"

namespace report {

struct EventTally {
  std::uint64_t count = 0;
  std::int64_t total = 0;
  std::int64_t max = 0;
  std::array<std::uint64_t, 20> digits{};  // index: decimal digits of ela (0 for ela <= 0)

  void Add(std::int64_t ela);
  void Merge(const EventTally& other);
  // The figures in microseconds; `decades` is 4 for a centisecond trace, else 0.
  EventFigures Figures(std::string name, bool idle, std::int64_t factor, int decades) const;
};

// The tallies of one owner (a session, a statement), by event number; few events per owner, so
// a short list searched in order.
class EventTallies {
 public:
  EventTally& At(std::size_t event);
  const std::vector<std::pair<std::size_t, EventTally>>& entries() const { return entries_; }

 private:
  std::vector<std::pair<std::size_t, EventTally>> entries_;
};

}  // namespace report

#endif  // PELICOR_REPORT_EVENT_TALLY_H_
