// The response-time profile of one trace file: where the traced sessions' time went (CPU of the
// database calls, each wait event, the idle time between calls, and what nothing accounts
// for), and the same question asked of each statement. Every duration is in microseconds,
// whatever unit the trace was written in (8i writes centiseconds).
//
// A profile is a plain value: the builder fills it once, the text and HTML writers read it.
#ifndef PELICOR_REPORT_PROFILE_H_
#define PELICOR_REPORT_PROFILE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace report {

using Micros = std::int64_t;

// Decade buckets of a wait's duration: <1 us, 1-10 us, 10-100 us, 100 us-1 ms, 1-10 ms,
// 10-100 ms, 100 ms-1 s, >=1 s.
inline constexpr std::size_t kHistogramBuckets = 8;
using Histogram = std::array<std::uint64_t, kHistogramBuckets>;
// The label of bucket i ("<1us", "1us", "10us", ... ">=1s").
const char* HistogramLabel(std::size_t bucket);

struct EventFigures {
  std::string name;
  bool idle = false;  // time between calls (SQL*Net message from client and its kind)
  std::uint64_t count = 0;
  Micros total = 0;
  Micros max = 0;
  Histogram histogram{};

  Micros Average() const { return count == 0 ? 0 : total / static_cast<Micros>(count); }
};

// One line of a response-time table.
enum class ComponentKind { kCpu, kWait, kUnaccounted, kIdle };
struct Component {
  ComponentKind kind = ComponentKind::kCpu;
  std::string name;
  Micros time = 0;
  std::uint64_t count = 0;  // calls for CPU, waits for an event
  double share = 0;         // of the response time, 0..1 (negative for an overshoot)
};

// The figures of one call kind of a statement, as TKPROF's call table shows them.
struct CallFigures {
  std::uint64_t count = 0;
  Micros cpu = 0;
  Micros elapsed = 0;
  std::int64_t disk = 0;
  std::int64_t query = 0;
  std::int64_t current = 0;
  std::int64_t rows = 0;
  std::uint64_t misses = 0;
};
enum CallKind : std::size_t { kParseCall = 0, kExecCall = 1, kFetchCall = 2 };
inline constexpr std::size_t kCallKinds = 3;

// Adds `more` into `total` field by field: the "total" row of a statement's call table.
inline void AddCallFigures(const CallFigures& more, CallFigures* total) {
  total->count += more.count;
  total->cpu += more.cpu;
  total->elapsed += more.elapsed;
  total->disk += more.disk;
  total->query += more.query;
  total->current += more.current;
  total->rows += more.rows;
  total->misses += more.misses;
}

struct Skew {
  Micros min = 0;
  Micros median = 0;
  Micros max = 0;
};

// One row of an execution plan (a STAT line), with the row-source figures the release writes;
// -1 where the line has none.
struct PlanRow {
  std::int32_t id = 0;
  std::int32_t parent = 0;
  std::int32_t depth = 0;  // 0 for the root
  std::int64_t rows = 0;
  std::int64_t object = 0;
  std::string operation;  // without the figures in parentheses
  std::int64_t cr = -1, pr = -1, pw = -1, time = -1, cost = -1, card = -1;
};

struct BindValue {
  std::int32_t position = 0;
  std::int32_t type = 0;  // Oracle's data type code (dty / oacdty)
  std::string value;
};

// One execution: an EXEC call and the FETCH calls that follow it on the same cursor.
struct ExecutionSample {
  std::uint64_t number = 0;  // 1 for the statement's first execution
  Micros elapsed = 0;
  Micros cpu = 0;
  std::vector<BindValue> binds;
};

struct StatementProfile {
  std::string sql_text;
  bool text_known = true;  // false: the trace started after the cursor was parsed
  std::string sql_id;
  std::int32_t depth = 0;
  std::int64_t parsing_user = -1;
  std::uint64_t parse_count = 0;  // cursors opened with this text (PARSING IN CURSOR lines)
  std::array<CallFigures, kCallKinds> calls{};
  // Inclusive: the calls' own figures, which hold their recursive calls'; exclusive: without.
  Micros cpu = 0, elapsed = 0;
  Micros exclusive_cpu = 0, exclusive_elapsed = 0;
  std::vector<EventFigures> waits;            // on this statement's own cursor
  std::vector<EventFigures> inclusive_waits;  // and on the recursive statements beneath it
  Skew elapsed_per_execution;
  Skew cpu_per_execution;
  std::vector<PlanRow> plan;
  ExecutionSample first_execution;
  ExecutionSample slowest_execution;
  bool has_executions = false;

  std::uint64_t Executions() const { return calls[kExecCall].count; }
  std::int64_t Rows() const { return calls[kExecCall].rows + calls[kFetchCall].rows; }
  // The response-time split of the statement, recursive work included.
  std::vector<Component> Split() const;
};

// One traced session (its "*** SESSION ID:(sid.serial)"), or the part of the file before any
// session line.
struct SessionProfile {
  std::string id;  // "9.1407"; empty when the trace gave none
  Micros response_time = 0;
  Micros cpu = 0;
  std::uint64_t calls = 0;  // database calls at depth 0
  std::vector<EventFigures> events;
};

// The timeline of the file, downsampled into equal slices of the trace clock.
struct TimelineSlice {
  Micros cpu = 0;
  std::vector<Micros> events;  // by index into Timeline::event_names
};
struct Timeline {
  Micros start = 0;  // trace clock of the first slice's start, microseconds
  Micros slice = 0;  // width of one slice
  std::vector<std::string> event_names;
  std::vector<bool> event_idle;
  std::vector<TimelineSlice> slices;
};

// What the trace's header lines say.
struct HeaderFacts {
  std::string file;
  std::string release;  // the banner line
  std::string version;  // "Version 19.14.2.0.0" (18c on)
  std::string instance;
  std::string node;
  std::string process;  // Oracle process number
  std::string os_process;
  std::string service, module, action;
  std::string first_timestamp;
  std::int32_t major_version = 0;
  bool centiseconds = false;
  std::uint64_t sections = 0;  // trace sections ("Oracle process number:" lines)
};

struct Profile {
  HeaderFacts header;
  Micros response_time = 0;
  Micros cpu = 0;
  std::uint64_t calls = 0;
  std::vector<EventFigures> events;  // every event, the largest total first
  std::vector<SessionProfile> sessions;
  std::vector<StatementProfile> statements;  // the largest exclusive elapsed time first
  Timeline timeline;

  // Time that neither CPU nor any wait explains: the response time less both (negative when
  // the trace's figures overshoot, as quantised CPU times do).
  Micros Unaccounted() const;
  // The response-time table: CPU, the non-idle events, unaccounted-for, then the idle events.
  std::vector<Component> Components() const;
};

}  // namespace report

#endif  // PELICOR_REPORT_PROFILE_H_
