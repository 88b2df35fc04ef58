// The timeline's slices and the histogram's decades: where time and waits land.
#include <gtest/gtest.h>

#include <numeric>

#include "report/event_tally.h"
#include "report/timeline_builder.h"

namespace {

using report::TimelineBuilder;

report::Micros SliceTotal(const report::Timeline& timeline) {
  report::Micros total = 0;
  for (const auto& slice : timeline.slices) {
    total +=
        slice.cpu + std::accumulate(slice.events.begin(), slice.events.end(), report::Micros{0});
  }
  return total;
}

TEST(Timeline, SpreadsACallsCpuOverTheCall) {
  TimelineBuilder builder;
  builder.Add(100, 100, 50, 0);  // the first call starts the clock at 0, width 1
  const report::Timeline timeline = builder.Finish(1, {}, {});
  EXPECT_EQ(timeline.start, 0);
  EXPECT_EQ(timeline.slice, 1);
  ASSERT_LE(timeline.slices.size(), 100u);  // one slice per tick; a trailing empty one goes
  EXPECT_EQ(SliceTotal(timeline), 50);
  for (const auto& slice : timeline.slices) EXPECT_LE(slice.cpu, 1);
}

TEST(Timeline, WidensToHoldAnyLengthInAFixedNumberOfSlices) {
  TimelineBuilder builder;
  builder.Add(10, 10, 10, 0);
  builder.Add(1000000, 5, 5, 1);  // a wait a long time later
  builder.Add(20000000, 100, 100, 1);
  const report::Timeline timeline = builder.Finish(10000, {"db file sequential read"}, {false});
  EXPECT_LE(timeline.slices.size(), TimelineBuilder::kSlices);
  EXPECT_GE(timeline.slice * static_cast<report::Micros>(TimelineBuilder::kSlices),
            report::Micros{20000000} * 10000);
  EXPECT_EQ(SliceTotal(timeline), 115 * 10000);  // the unit applied, nothing lost in merging
  EXPECT_EQ(timeline.slices.front().cpu, 10 * 10000);
  EXPECT_EQ(timeline.slices.back().events[0], 100 * 10000);
}

TEST(Timeline, AClockSteppingBackLandsAtTheStart) {
  TimelineBuilder builder;
  builder.Add(1000, 10, 10, 0);
  builder.Add(500, 10, 7, 1);  // 11.1.0.7 repeats and reorders tim values
  const report::Timeline timeline = builder.Finish(1, {"x"}, {false});
  EXPECT_EQ(SliceTotal(timeline), 17);
  report::Micros first_slices = 0;  // laid over its 10 ticks from the start on
  for (std::size_t i = 0; i < 10; ++i) first_slices += timeline.slices[i].events[0];
  EXPECT_EQ(first_slices, 7);
}

TEST(EventTally, DecadeOfEachDurationInEachUnit) {
  struct Case {
    std::int64_t ela;
    int decades;  // 4: centiseconds
    std::size_t bucket;
  };
  const Case cases[] = {
      {0, 0, 0},           {1, 0, 1},     {9, 0, 1},         {10, 0, 2},     {999, 0, 3},
      {1000, 0, 4},        {99999, 0, 5}, {100000, 0, 6},    {999999, 0, 6}, {1000000, 0, 7},
      {98765432100, 0, 7}, {0, 4, 0},     {1, 4, 5},         {9, 4, 5},      {10, 4, 6},
      {99, 4, 6},          {100, 4, 7},   {123456789, 4, 7},
  };
  for (const Case& c : cases) {
    report::EventTally tally;
    tally.Add(c.ela);
    const report::EventFigures figures =
        tally.Figures("e", false, c.decades == 4 ? 10000 : 1, c.decades);
    report::Histogram expected{};
    expected[c.bucket] = 1;
    EXPECT_EQ(figures.histogram, expected) << c.ela << " ticks, " << c.decades;
    EXPECT_EQ(figures.max, c.ela * (c.decades == 4 ? 10000 : 1));
  }
}

}  // namespace
