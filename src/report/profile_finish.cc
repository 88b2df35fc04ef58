// ProfileBuilder::Finish: the tallies, in trace ticks, become the profile in microseconds.
#include <algorithm>
#include <utility>

#include "report/plan_rows.h"
#include "report/profile_builder.h"

namespace report {

namespace {

constexpr std::int64_t kMicrosPerCentisecond = 10000;

// The median is the lower middle value; found without sorting (a statement may have millions
// of executions).
Skew SkewOf(std::vector<std::int64_t> values, std::int64_t factor) {
  Skew skew;
  if (values.empty()) return skew;
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  skew.min = *least * factor;
  skew.max = *most * factor;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) / 2);
  std::nth_element(values.begin(), middle, values.end());
  skew.median = *middle * factor;
  return skew;
}

bool LargerTotal(const EventFigures& a, const EventFigures& b) {
  if (a.total != b.total) return a.total > b.total;
  return a.name < b.name;
}

CallFigures Scaled(const CallFigures& ticks, std::int64_t factor) {
  CallFigures figures = ticks;
  figures.cpu *= factor;
  figures.elapsed *= factor;
  return figures;
}

}  // namespace

bool ProfileBuilder::Centiseconds(const parser::CTraceParser& parser) const {
  if (parser.NewerForms()) return false;
  if (parser.BannerMajorVersion() > 0) return parser.TimeDivisor() == 100;
  // No banner (the trace starts mid-file): 13 digits or more of tim mean a microsecond clock.
  return largest_tim_ < 1000000000000;
}

std::vector<EventFigures> ProfileBuilder::Figures(const EventTallies& tallies, std::int64_t factor,
                                                  int decades) const {
  std::vector<EventFigures> figures;
  for (const auto& [event, tally] : tallies.entries()) {
    figures.push_back(tally.Figures(event_names_[event], event_idle_[event], factor, decades));
  }
  std::sort(figures.begin(), figures.end(), LargerTotal);
  return figures;
}

ExecutionSample ProfileBuilder::MakeExecution(const ExecutionRef& ref, std::int64_t factor) const {
  ExecutionSample sample;
  if (ref.instance == nullptr) return sample;
  sample.number = ref.number;
  sample.elapsed = ref.elapsed * factor;
  sample.cpu = ref.cpu * factor;
  for (const parser::BindRecord& bind : ref.instance->binds) {
    if (bind.bind_set != ref.bind_set) continue;
    sample.binds.push_back(BindValue{bind.bind, bind.dty, bind.value});
  }
  return sample;
}

StatementProfile ProfileBuilder::MakeStatement(const StatementTally& tally, std::int64_t factor,
                                               int decades) const {
  StatementProfile statement;
  statement.text_known = tally.first != nullptr;
  if (tally.first != nullptr) {
    statement.sql_text = tally.first->SqlText();
    statement.parsing_user =
        tally.first->is_parse_error ? tally.first->parse_error.uid : tally.first->header.uid;
  } else {
    statement.sql_text = "cursor #" + std::to_string(tally.cursor);
  }
  statement.sql_id = tally.sql_id;
  statement.depth = tally.depth;
  statement.parse_count = tally.parse_count;
  for (std::size_t kind = 0; kind < kCallKinds; ++kind) {
    const CallTally& calls = tally.calls[kind];
    statement.calls[kind] =
        Scaled(CallFigures{calls.count, calls.cpu, calls.elapsed, calls.disk, calls.query,
                           calls.current, calls.rows, calls.misses},
               factor);
  }
  statement.cpu = tally.cpu * factor;
  statement.elapsed = tally.elapsed * factor;
  statement.exclusive_cpu = tally.exclusive_cpu * factor;
  statement.exclusive_elapsed = tally.exclusive_elapsed * factor;
  statement.waits = Figures(tally.own_waits, factor, decades);
  EventTallies inclusive = tally.own_waits;
  for (const auto& [event, figures] : tally.claimed_waits.entries()) {
    inclusive.At(event).Merge(figures);
  }
  statement.inclusive_waits = Figures(inclusive, factor, decades);
  statement.elapsed_per_execution = SkewOf(tally.execution_elapsed, factor);
  statement.cpu_per_execution = SkewOf(tally.execution_cpu, factor);
  statement.has_executions = !tally.execution_elapsed.empty();
  statement.first_execution = MakeExecution(tally.first_execution, factor);
  statement.slowest_execution = MakeExecution(tally.slowest_execution, factor);
  return statement;
}

// The plan of each statement: the rows of the first of its cursors that wrote any.
void ProfileBuilder::AddPlans(const parser::CTraceParser& parser,
                              std::vector<StatementProfile>* statements) {
  for (const parser::StatementList* list : {&parser.ClosedStatements(), &parser.OpenStatements()}) {
    for (const auto& statement : *list) {
      if (statement->stats.empty()) continue;
      const auto found = instances_.find(statement.get());
      if (found == instances_.end()) continue;
      StatementProfile& profile = (*statements)[found->second.statement];
      if (profile.plan.empty()) profile.plan = PlanRows(statement->stats);
    }
  }
}

// The executions still running when the trace ends end in the order they began: the first
// execution of a statement is the first one of the trace, whatever the order of the instances
// in memory.
void ProfileBuilder::EndRunningExecutions() {
  std::vector<Instance*> running;
  for (auto& entry : instances_) {
    if (entry.second.executing) running.push_back(&entry.second);
  }
  std::sort(running.begin(), running.end(),
            [](const Instance* a, const Instance* b) { return a->started < b->started; });
  for (Instance* instance : running) EndExecution(*instance);
}

Profile ProfileBuilder::Finish(const parser::CTraceParser& parser, HeaderFacts header) {
  EndRunningExecutions();
  EndStretch();
  const bool centiseconds = Centiseconds(parser);
  const std::int64_t factor = centiseconds ? kMicrosPerCentisecond : 1;
  const int decades = centiseconds ? 4 : 0;

  Profile profile;
  profile.header = std::move(header);
  profile.header.centiseconds = centiseconds;
  profile.header.major_version = parser.BannerMajorVersion();
  EventTallies all_events;
  for (const SessionTally& tally : sessions_) {
    SessionProfile session;
    session.id = tally.id;
    session.response_time = tally.response * factor;
    session.cpu = tally.cpu * factor;
    session.calls = tally.calls;
    session.events = Figures(tally.events, factor, decades);
    for (const auto& [event, figures] : tally.events.entries()) all_events.At(event).Merge(figures);
    profile.response_time += session.response_time;
    profile.cpu += session.cpu;
    profile.calls += session.calls;
    profile.sessions.push_back(std::move(session));
  }
  profile.events = Figures(all_events, factor, decades);

  for (const StatementTally& tally : statements_) {
    profile.statements.push_back(MakeStatement(tally, factor, decades));
  }
  AddPlans(parser, &profile.statements);
  std::stable_sort(profile.statements.begin(), profile.statements.end(),
                   [](const StatementProfile& a, const StatementProfile& b) {
                     return a.exclusive_elapsed > b.exclusive_elapsed;
                   });
  profile.timeline = timeline_.Finish(factor, event_names_, event_idle_);
  return profile;
}

}  // namespace report
