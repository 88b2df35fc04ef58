// What a generated trace holds, figured as the generator writes it: the held-out answers a
// response-time profile of the trace must give. Times are in the trace's microseconds.
//   - events: every WAIT line a reader sees (in 9i traces the one right behind a BINDS block
//     ends the block and is lost to every reader, so it is not counted);
//   - the response time: per stretch between "Oracle process number:" lines, from the start of
//     the first top-level call or wait to the end of the last (a 9i wait ends at the time of the
//     last call or wait before it plus its ela, as the trace tells it);
//   - per statement (by SQL text): each call kind's count and own figures (a top-level call's
//     less those of the recursive calls since the previous top-level call), the inclusive cpu
//     and elapsed time, rows, the waits on its cursors, and the waits of the recursive
//     statements beneath it.
#ifndef PELICOR_BENCH_GENERATOR_GENERATED_TRUTH_H_
#define PELICOR_BENCH_GENERATOR_GENERATED_TRUTH_H_

#include <array>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>

namespace tracegen {

struct EventTruth {
  std::uint64_t count = 0;
  std::int64_t total = 0;
  std::int64_t max = 0;

  void Add(std::int64_t ela) {
    ++count;
    total += ela;
    if (ela > max) max = ela;
  }
};

struct CallTruth {
  std::uint64_t count = 0;
  std::int64_t own_cpu = 0;
  std::int64_t own_elapsed = 0;
};

struct StatementTruth {
  int depth = 0;
  std::array<CallTruth, 3> calls{};  // parse, exec, fetch
  std::int64_t cpu = 0;
  std::int64_t elapsed = 0;
  std::int64_t rows = 0;
  std::map<std::string, EventTruth> waits;
  std::int64_t inclusive_wait_time = 0;  // its own waits and its recursive statements'
};

struct GeneratedTruth {
  std::int64_t response_time = 0;
  std::int64_t cpu = 0;     // of the top-level calls
  std::uint64_t calls = 0;  // top-level PARSE, EXEC and FETCH calls
  std::map<std::string, EventTruth> events;
  std::map<std::string, StatementTruth> statements;  // by SQL text as written
};

// One line per figure, tab-separated: "response", "cpu", "calls", "event NAME count total max",
// "statement N depth ...", then the statement's SQL text with its line breaks as "\n".
void WriteTruth(std::ostream& out, const GeneratedTruth& truth);

}  // namespace tracegen

#endif  // PELICOR_BENCH_GENERATOR_GENERATED_TRUTH_H_
