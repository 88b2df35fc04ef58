// Builds a Profile from the records of a trace, in trace order, as the parser files them. The
// parser keeps the statements (SQL text, binds, plan rows); the builder keeps what only the
// order of the lines tells: which session and section a call belongs to, which statement's
// call a recursive call served, where each execution starts, and the trace clock.
//
// Figures stay in trace ticks until Finish, which learns the unit from the parser.
#ifndef PELICOR_REPORT_PROFILE_BUILDER_H_
#define PELICOR_REPORT_PROFILE_BUILDER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "parser/records.h"
#include "parser/recursive_calls.h"
#include "parser/trace_parser.h"
#include "parser/trace_statement.h"
#include "report/event_tally.h"
#include "report/profile.h"
#include "report/timeline_builder.h"

namespace report {

enum class ProfiledCall { kParse, kExec, kFetch, kClose };

class ProfileBuilder {
 public:
  // A "*** SESSION ID:(9.1407)" line: the lines that follow belong to session "9.1407".
  void SessionLine(std::string_view session_id);
  // An "Oracle process number:" line: a new trace section (new cursors, a new clock).
  void SectionLine();
  // A statement the parser opened (PARSING IN CURSOR or PARSE ERROR); `sql_id` may be empty.
  void StatementOpened(const parser::TraceStatement& statement, std::string_view sql_id);
  // A call; `statement` is the parser's statement of its cursor (null when it has none) and
  // `bind_set` the EXEC's bind set (-1: none).
  void Call(ProfiledCall kind, const parser::TraceStatement* statement,
            const parser::CallRecord& call, std::int32_t bind_set);
  // A wait; `statement` non-null means the record is the one the parser filed (its name is
  // the parser's stored copy). `own_time` says that wait.tim is the line's own (10.2 and later);
  // otherwise the wait ends at the trace clock moved on by its ela.
  void Wait(const parser::TraceStatement* statement, const parser::WaitRecord& wait, bool own_time);
  // A line that only moves the trace clock (XCTEND with tim).
  void Clock(std::int64_t tim);

  // The profile of everything seen; `parser` is the one that read the trace (statements,
  // release). `header` holds the header facts gathered from the lines.
  Profile Finish(const parser::CTraceParser& parser, HeaderFacts header);

 private:
  struct CallTally {
    std::uint64_t count = 0;
    std::int64_t cpu = 0, elapsed = 0, disk = 0, query = 0, current = 0, rows = 0;
    std::uint64_t misses = 0;
  };
  struct ExecutionRef {
    const parser::TraceStatement* instance = nullptr;
    std::int32_t bind_set = -1;
    std::uint64_t number = 0;
    std::int64_t elapsed = 0, cpu = 0;
  };
  struct StatementTally {
    const parser::TraceStatement* first = nullptr;  // null for a cursor never parsed in the trace
    parser::CursorNo cursor = 0;
    std::string sql_id;
    std::int32_t depth = 0;
    std::uint64_t parse_count = 0;
    std::array<CallTally, kCallKinds> calls{};
    std::int64_t cpu = 0, elapsed = 0, exclusive_cpu = 0, exclusive_elapsed = 0;
    EventTallies own_waits;
    EventTallies claimed_waits;  // of the recursive statements beneath it
    std::vector<std::int64_t> execution_elapsed, execution_cpu;
    ExecutionRef first_execution, slowest_execution;
  };
  struct Instance {
    std::size_t statement = 0;
    bool executing = false;
    std::uint64_t started = 0;  // when `current` began, counted in EXEC lines of the trace
    ExecutionRef current;
  };
  struct SessionTally {
    std::string id;
    std::int64_t response = 0, cpu = 0;
    std::uint64_t calls = 0;
    EventTallies events;
  };
  // Waits of recursive statements waiting for the call of the level above them.
  using PendingWaits = std::vector<std::pair<std::size_t, EventTally>>;

  std::size_t EventNumber(std::string_view name);
  std::size_t StatementOf(const parser::TraceStatement* statement, parser::CursorNo cursor);
  Instance* InstanceOf(const parser::TraceStatement* statement);
  void CountCall(StatementTally& tally, ProfiledCall kind, const parser::CallRecord& call,
                 const parser::CallRecord& own);
  void TrackExecution(const parser::TraceStatement* statement, ProfiledCall kind,
                      const parser::CallRecord& call, std::int32_t bind_set);
  void EndExecution(Instance& instance);
  void EndRunningExecutions();
  void ClaimRecursiveWaits(std::int32_t depth, StatementTally* tally);
  void Stretch(std::int64_t begin, std::int64_t end);
  void EndStretch();
  SessionTally& CurrentSession();
  bool Centiseconds(const parser::CTraceParser& parser) const;
  StatementProfile MakeStatement(const StatementTally& tally, std::int64_t factor,
                                 int decades) const;
  std::vector<EventFigures> Figures(const EventTallies& tallies, std::int64_t factor,
                                    int decades) const;
  ExecutionSample MakeExecution(const ExecutionRef& ref, std::int64_t factor) const;
  void AddPlans(const parser::CTraceParser& parser, std::vector<StatementProfile>* statements);

  std::vector<std::string> event_names_;
  std::vector<bool> event_idle_;
  // The parser keeps one copy of each event name: its address names the event.
  std::vector<std::pair<const char*, std::size_t>> event_by_address_;
  std::vector<StatementTally> statements_;
  std::unordered_map<std::string, std::size_t> statement_by_text_;
  std::unordered_map<parser::CursorNo, std::size_t> unparsed_cursors_;
  std::unordered_map<const parser::TraceStatement*, Instance> instances_;
  const parser::TraceStatement* last_instance_key_ = nullptr;
  Instance* last_instance_ = nullptr;
  std::vector<SessionTally> sessions_;
  std::size_t session_ = 0;
  bool in_session_ = false;
  parser::RecursiveCalls recursive_;
  std::vector<PendingWaits> pending_;  // index: depth of the waiting statement
  TimelineBuilder timeline_;
  // The trace clock: known once a line gave a time of its own.
  std::int64_t clock_ = 0;
  bool clock_known_ = false;
  std::int64_t unclocked_ = 0;  // ticks waited before the clock was known
  bool stretch_open_ = false;
  std::int64_t stretch_begin_ = 0, stretch_end_ = 0;
  std::int64_t largest_tim_ = 0;
  std::uint64_t executions_started_ = 0;
};

}  // namespace report

#endif  // PELICOR_REPORT_PROFILE_BUILDER_H_
