// Writes realistic Oracle SQL trace files (event 10046 level 12 layout) for tests and
// benchmarks: a header with the release banner, a session line, then statements opened on a
// handful of cursor numbers (reused as the application closes and reopens them), recursive
// dictionary queries, BINDS blocks, EXEC/FETCH calls with their waits, STAT rows when a cursor
// closes, XCTEND and timestamp lines, WAIT #0 lines between calls, and optionally new trace
// sections ("Oracle process number:") and the size-limit line at the end.
//
// Two layouts: Oracle 9i, and Oracle 19c (cursor numbers are addresses, plh= on the calls,
// Bind#n blocks, WAIT lines with named parameters, obj# and tim, STAT figures with pr/pw/str
// and the optimizer's estimates, CLOSE lines, ISO timestamps with the PDB).
//
// The same options (random_state included) always give the same bytes.
#ifndef PELICOR_BENCH_GENERATOR_TRACE_GENERATOR_H_
#define PELICOR_BENCH_GENERATOR_TRACE_GENERATOR_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "generated_truth.h"

namespace tracegen {

enum class TraceFormat { kOracle9i, kOracle19c };

struct GeneratorOptions {
  TraceFormat format = TraceFormat::kOracle9i;
  std::uint64_t target_bytes = 1 << 20;  // writing stops at the first statement boundary past it
  std::uint64_t random_state = 0x9e3779b97f4a7c15ULL;
  int cursor_slots = 6;        // top-level cursor numbers 1..cursor_slots
  int reopen_percent = 12;     // chance that a step closes its cursor and opens a new one
  int recursive_percent = 25;  // chance that a new statement brings a recursive query
  int long_sql_percent = 1;    // chance of a SQL line longer than 1023 bytes
  bool binds = true;
  bool waits = true;
  bool stats = true;
  int process_line_every = 0;    // a new trace section after this many statements (0: never)
  bool size_limit_line = false;  // end with the server's size-limit line
  bool crlf = false;             // Windows line ends
};

// What a parser must file from the trace: records whose cursor had a statement open.
struct GeneratedCounts {
  std::uint64_t bytes = 0;
  std::uint64_t lines = 0;
  std::uint64_t statements = 0;  // PARSING IN CURSOR lines
  std::uint64_t parse_calls = 0;
  std::uint64_t exec_calls = 0;
  std::uint64_t fetch_calls = 0;
  // WAIT lines of open cursors (WAIT #0 lines are not counted, nor, in 9i traces, a WAIT right
  // behind a BINDS block, which ends the block and is lost)
  std::uint64_t waits = 0;
  std::uint64_t binds = 0;
  std::uint64_t stats = 0;
  std::uint64_t bind_sets = 0;
  GeneratedTruth truth;  // the figures a response-time profile must find
};

GeneratedCounts WriteTrace(std::ostream& out, const GeneratorOptions& options);

// Writes the trace into `path` (replacing it); false when the file cannot be written.
bool WriteTraceFile(const std::string& path, const GeneratorOptions& options,
                    GeneratedCounts* counts = nullptr);

}  // namespace tracegen

#endif  // PELICOR_BENCH_GENERATOR_TRACE_GENERATOR_H_
