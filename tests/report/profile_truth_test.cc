// The profile of generated traces against what their generator says it wrote: the response
// time, CPU, every event and every statement's calls, times and waits, in both layouts and
// across trace sections.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "report/profiling_parser.h"
#include "support/scratch.h"
#include "trace_generator.h"

namespace {

// SQL text without its white space: the generator writes line breaks that the trace carries
// as lines, and the parser joins them as the trace has them.
std::string Key(const std::string& text) {
  std::string key;
  for (const char c : text) {
    if (c != ' ' && c != '\n' && c != '\r' && c != '\t') key += c;
  }
  return key;
}

struct Case {
  const char* name;
  tracegen::TraceFormat format;
  int process_line_every;
};

class ProfileTruth : public testing::TestWithParam<Case> {};

TEST_P(ProfileTruth, ProfileGivesTheGeneratorsFigures) {
  tracegen::GeneratorOptions options;
  options.format = GetParam().format;
  options.target_bytes = 600 << 10;
  options.process_line_every = GetParam().process_line_every;
  const pelicor_test::ScratchDir dir;
  const std::string trace = (dir.path() / "generated.trc").string();
  tracegen::GeneratedCounts counts;
  ASSERT_TRUE(tracegen::WriteTraceFile(trace, options, &counts));
  const tracegen::GeneratedTruth& truth = counts.truth;

  report::ProfilingParser parser;
  parser.Parse(trace, 0);
  const report::Profile profile = parser.TakeProfile();

  EXPECT_EQ(profile.response_time, truth.response_time);
  EXPECT_EQ(profile.cpu, truth.cpu);
  EXPECT_EQ(profile.calls, truth.calls);
  ASSERT_EQ(profile.events.size(), truth.events.size());
  for (const report::EventFigures& event : profile.events) {
    SCOPED_TRACE(event.name);
    const auto found = truth.events.find(event.name);
    ASSERT_NE(found, truth.events.end());
    EXPECT_EQ(event.count, found->second.count);
    EXPECT_EQ(event.total, found->second.total);
    EXPECT_EQ(event.max, found->second.max);
    std::uint64_t histogram_count = 0;
    for (const std::uint64_t n : event.histogram) histogram_count += n;
    EXPECT_EQ(histogram_count, event.count);
  }

  std::map<std::string, const tracegen::StatementTruth*> expected;
  for (const auto& [text, statement] : truth.statements) expected[Key(text)] = &statement;
  ASSERT_EQ(profile.statements.size(), expected.size());
  for (const report::StatementProfile& s : profile.statements) {
    SCOPED_TRACE(s.sql_text);
    const auto found = expected.find(Key(s.sql_text));
    ASSERT_NE(found, expected.end());
    const tracegen::StatementTruth& t = *found->second;
    EXPECT_EQ(s.depth, t.depth);
    for (std::size_t kind = 0; kind < report::kCallKinds; ++kind) {
      EXPECT_EQ(s.calls[kind].count, t.calls[kind].count) << kind;
      EXPECT_EQ(s.calls[kind].cpu, t.calls[kind].own_cpu) << kind;
      EXPECT_EQ(s.calls[kind].elapsed, t.calls[kind].own_elapsed) << kind;
    }
    EXPECT_EQ(s.cpu, t.cpu);
    EXPECT_EQ(s.elapsed, t.elapsed);
    EXPECT_EQ(s.Rows(), t.rows);
    ASSERT_EQ(s.waits.size(), t.waits.size());
    for (const report::EventFigures& wait : s.waits) {
      const auto event = t.waits.find(wait.name);
      ASSERT_NE(event, t.waits.end()) << wait.name;
      EXPECT_EQ(wait.count, event->second.count) << wait.name;
      EXPECT_EQ(wait.total, event->second.total) << wait.name;
      EXPECT_EQ(wait.max, event->second.max) << wait.name;
    }
    report::Micros inclusive = 0;
    for (const report::EventFigures& wait : s.inclusive_waits) inclusive += wait.total;
    EXPECT_EQ(inclusive, t.inclusive_wait_time);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, ProfileTruth,
    testing::Values(Case{"Oracle9i", tracegen::TraceFormat::kOracle9i, 0},
                    Case{"Oracle19c", tracegen::TraceFormat::kOracle19c, 0},
                    Case{"Oracle9iSections", tracegen::TraceFormat::kOracle9i, 40},
                    Case{"Oracle19cSections", tracegen::TraceFormat::kOracle19c, 40}),
    [](const testing::TestParamInfo<Case>& param) { return param.param.name; });

}  // namespace
