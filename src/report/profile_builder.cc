#include "report/profile_builder.h"

#include <algorithm>
#include <utility>

#include "report/idle_events.h"
#include "report/plan_rows.h"

namespace report {

namespace {

// No real call or wait lasts this long (116 days in microseconds); a damaged line's figure is
// cut to it, so that sums of millions of lines cannot overflow.
constexpr std::int64_t kLargestFigure = 10000000000000;

// Figures a line does not give are -1: they add nothing.
std::int64_t Given(std::int64_t value) {
  return value < 0 ? 0 : std::min(value, kLargestFigure);
}

// A figure that can be negative (a call's own figures), cut to the same range.
std::int64_t Bounded(std::int64_t value) {
  return std::clamp(value, -kLargestFigure, kLargestFigure);
}

// A trace time far enough from the ends of the range that spans and slices cannot overflow;
// others are damaged and place nothing on the clock.
bool Plausible(std::int64_t tim) {
  constexpr std::int64_t kRange = std::int64_t{1} << 61;
  return tim > -kRange && tim < kRange;
}

// Trace times are summed without overflow traps: a corrupt ela must not stop the profile.
std::int64_t WrappingAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

}  // namespace

// --- Lines that change where the following lines belong ------------------------------------

void ProfileBuilder::SessionLine(std::string_view session_id) {
  if (in_session_ && sessions_[session_].id == session_id) return;
  EndStretch();
  in_session_ = true;
  for (std::size_t i = 0; i < sessions_.size(); ++i) {
    if (sessions_[i].id == session_id) {
      session_ = i;
      return;
    }
  }
  sessions_.push_back(SessionTally{});
  sessions_.back().id = std::string(session_id);
  session_ = sessions_.size() - 1;
}

void ProfileBuilder::SectionLine() {
  EndStretch();
  unparsed_cursors_.clear();
  recursive_.Clear();
  pending_.clear();
}

ProfileBuilder::SessionTally& ProfileBuilder::CurrentSession() {
  if (!in_session_) {
    // The lines before any session line (a trace that starts mid-session has none at all).
    sessions_.push_back(SessionTally{});
    session_ = sessions_.size() - 1;
    in_session_ = true;
  }
  return sessions_[session_];
}

void ProfileBuilder::Stretch(std::int64_t begin, std::int64_t end) {
  if (!stretch_open_) {
    stretch_open_ = true;
    stretch_begin_ = begin - unclocked_;  // those waits came right before the first clocked line
    unclocked_ = 0;
    stretch_end_ = end;
    return;
  }
  stretch_begin_ = std::min(stretch_begin_, begin);
  stretch_end_ = std::max(stretch_end_, end);
}

void ProfileBuilder::EndStretch() {
  if (!stretch_open_) return;
  sessions_[session_].response =
      WrappingAdd(sessions_[session_].response, stretch_end_ - stretch_begin_);
  stretch_open_ = false;
}

// --- Statements --------------------------------------------------------------------------

void ProfileBuilder::StatementOpened(const parser::TraceStatement& statement,
                                     std::string_view sql_id) {
  const auto found = statement_by_text_.find(statement.SqlText());
  std::size_t index = statements_.size();
  if (found == statement_by_text_.end()) {
    statements_.push_back(StatementTally{});
    statements_.back().first = &statement;
    statements_.back().depth =
        statement.is_parse_error ? statement.parse_error.dep : statement.header.dep;
    statement_by_text_.emplace(statement.SqlText(), index);
  } else {
    index = found->second;
  }
  StatementTally& tally = statements_[index];
  ++tally.parse_count;
  if (tally.sql_id.empty()) tally.sql_id = std::string(sql_id);
  Instance& instance = instances_[&statement];
  instance = Instance{};
  instance.statement = index;
}

ProfileBuilder::Instance* ProfileBuilder::InstanceOf(const parser::TraceStatement* statement) {
  if (statement == last_instance_key_) return last_instance_;
  const auto found = instances_.find(statement);
  if (found == instances_.end()) {
    StatementOpened(*statement, {});
    return InstanceOf(statement);
  }
  last_instance_key_ = statement;
  last_instance_ = &found->second;
  return last_instance_;
}

std::size_t ProfileBuilder::StatementOf(const parser::TraceStatement* statement,
                                        parser::CursorNo cursor) {
  if (statement != nullptr) return InstanceOf(statement)->statement;
  const auto found = unparsed_cursors_.find(cursor);
  if (found != unparsed_cursors_.end()) return found->second;
  statements_.push_back(StatementTally{});
  statements_.back().cursor = cursor;
  unparsed_cursors_.emplace(cursor, statements_.size() - 1);
  return statements_.size() - 1;
}

// --- Calls -------------------------------------------------------------------------------

void ProfileBuilder::Call(ProfiledCall kind, const parser::TraceStatement* statement,
                          const parser::CallRecord& call, std::int32_t bind_set) {
  clock_ = call.tim;  // as the parser keeps its trace clock, also when a line has no tim
  const bool clocked = call.tim != 0 && Plausible(call.tim);
  if (clocked) {
    clock_known_ = true;
    largest_tim_ = std::max(largest_tim_, call.tim);
  }
  const parser::CallRecord own = recursive_.OwnFigures(call);
  const std::int32_t depth = call.dep < 0 ? 0 : call.dep;
  SessionTally& session = CurrentSession();
  if (depth == 0) {
    session.cpu += Given(call.c);
    if (kind != ProfiledCall::kClose) ++session.calls;
    if (clocked) {
      Stretch(call.tim - Given(call.e), call.tim);
      timeline_.Add(call.tim, Given(call.e), Given(call.c), 0);
    }
  }
  if (kind == ProfiledCall::kClose) {
    ClaimRecursiveWaits(depth, nullptr);
    return;
  }
  StatementTally& tally = statements_[StatementOf(statement, call.cursor)];
  CountCall(tally, kind, call, own);
  tally.cpu += Given(call.c);
  tally.elapsed += Given(call.e);
  ClaimRecursiveWaits(depth, &tally);
  if (statement != nullptr) TrackExecution(statement, kind, call, bind_set);
}

// A call's own figures can be negative (its recursive calls' CPU, counted in coarse ticks,
// can exceed its own); they count as they are when the line gave the field.
void ProfileBuilder::CountCall(StatementTally& tally, ProfiledCall kind,
                               const parser::CallRecord& call, const parser::CallRecord& own) {
  const auto own_part = [](std::int64_t given, std::int64_t own_value) {
    return given < 0 ? 0 : Bounded(own_value);
  };
  CallTally& calls = tally.calls[static_cast<std::size_t>(kind)];
  ++calls.count;
  calls.cpu += own_part(call.c, own.c);
  calls.elapsed += own_part(call.e, own.e);
  calls.disk += own_part(call.p, own.p);
  calls.query += own_part(call.cr, own.cr);
  calls.current += own_part(call.cu, own.cu);
  calls.rows += Given(call.r);
  calls.misses += static_cast<std::uint64_t>(Given(call.mis));
  tally.exclusive_cpu += own_part(call.c, own.c);
  tally.exclusive_elapsed += own_part(call.e, own.e);
}

void ProfileBuilder::TrackExecution(const parser::TraceStatement* statement, ProfiledCall kind,
                                    const parser::CallRecord& call, std::int32_t bind_set) {
  Instance& instance = *InstanceOf(statement);
  if (kind == ProfiledCall::kExec) {
    EndExecution(instance);
    instance.executing = true;
    instance.started = executions_started_++;
    instance.current.instance = statement;
    instance.current.bind_set = bind_set;
    instance.current.number = statements_[instance.statement].calls[kExecCall].count;
    instance.current.elapsed = Given(call.e);
    instance.current.cpu = Given(call.c);
  } else if (kind == ProfiledCall::kFetch && instance.executing) {
    instance.current.elapsed += Given(call.e);
    instance.current.cpu += Given(call.c);
  }
}

void ProfileBuilder::EndExecution(Instance& instance) {
  if (!instance.executing) return;
  instance.executing = false;
  StatementTally& tally = statements_[instance.statement];
  tally.execution_elapsed.push_back(instance.current.elapsed);
  tally.execution_cpu.push_back(instance.current.cpu);
  if (tally.first_execution.instance == nullptr) tally.first_execution = instance.current;
  if (tally.slowest_execution.instance == nullptr ||
      instance.current.elapsed > tally.slowest_execution.elapsed) {
    tally.slowest_execution = instance.current;
  }
}

// --- Waits -------------------------------------------------------------------------------

std::size_t ProfileBuilder::EventNumber(std::string_view name) {
  for (std::size_t i = event_names_.size(); i > 0; --i) {
    if (event_names_[i - 1] == name) return i - 1;
  }
  event_names_.emplace_back(name);
  event_idle_.push_back(IsIdleEvent(name));
  return event_names_.size() - 1;
}

void ProfileBuilder::Wait(const parser::TraceStatement* statement, const parser::WaitRecord& wait,
                          bool own_time) {
  const std::int64_t ela = Given(wait.ela);
  // A wait the parser filed under a statement names its event with the parser's one copy of the
  // name, whose address then names the event; other names view the line and are compared.
  std::size_t event = event_names_.size();
  if (statement != nullptr) {
    for (const auto& [address, number] : event_by_address_) {
      if (address == wait.nam.data()) event = number;
    }
  }
  if (event == event_names_.size()) {
    event = EventNumber(wait.nam);
    if (statement != nullptr) event_by_address_.emplace_back(wait.nam.data(), event);
  }
  SessionTally& session = CurrentSession();
  session.events.At(event).Add(ela);
  // Before 10.2 a wait has no time of its own: it moves the trace clock on by its ela.
  const std::int64_t tim = own_time ? wait.tim : WrappingAdd(clock_, wait.ela);
  const bool clocked = (own_time || clock_known_) && Plausible(tim);
  clock_ = tim;
  if (clocked) {
    clock_known_ = true;
    largest_tim_ = std::max(largest_tim_, tim);
    Stretch(tim - ela, tim);
    timeline_.Add(tim, ela, ela, event + 1);
  } else {
    unclocked_ = std::min(unclocked_ + ela, kLargestFigure);
  }
  std::size_t index = 0;
  if (statement != nullptr) {
    index = InstanceOf(statement)->statement;
  } else {
    const auto found = unparsed_cursors_.find(wait.cursor);
    if (found == unparsed_cursors_.end()) return;  // WAIT #0: the session's, no statement's
    index = found->second;
  }
  StatementTally& tally = statements_[index];
  tally.own_waits.At(event).Add(ela);
  if (tally.depth >= 1) {
    const auto depth = static_cast<std::size_t>(tally.depth);
    if (depth > parser::RecursiveCalls::kMaxDepth) return;
    if (pending_.size() <= depth) pending_.resize(depth + 1);
    bool merged = false;
    for (auto& entry : pending_[depth]) {
      if (entry.first == event) {
        entry.second.Add(ela);
        merged = true;
      }
    }
    if (!merged) {
      pending_[depth].emplace_back(event, EventTally{});
      pending_[depth].back().second.Add(ela);
    }
  }
}

// The waits of the recursive statements beneath a call at `depth` (those at depth + 1 since the
// last call at `depth`) become the call's statement's, and pass on to its own parent.
void ProfileBuilder::ClaimRecursiveWaits(std::int32_t depth, StatementTally* tally) {
  const auto level = static_cast<std::size_t>(depth);
  if (pending_.size() <= level + 1) return;
  PendingWaits children = std::move(pending_[level + 1]);
  pending_.resize(level + 1);
  for (const auto& [event, figures] : children) {
    if (tally != nullptr) tally->claimed_waits.At(event).Merge(figures);
    if (depth >= 1) {
      bool merged = false;
      for (auto& entry : pending_[level]) {
        if (entry.first == event) {
          entry.second.Merge(figures);
          merged = true;
        }
      }
      if (!merged) pending_[level].emplace_back(event, figures);
    }
  }
}

void ProfileBuilder::Clock(std::int64_t tim) {
  clock_ = tim;
  clock_known_ = true;
}

}  // namespace report
