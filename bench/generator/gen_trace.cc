// gen_trace: writes a generated Oracle SQL trace in the 9i or the 19c layout.
//   gen_trace OUTPUT [MEGABYTES] [RANDOM_STATE] [9i|19c] [TRUTH_FILE]
// TRUTH_FILE receives the figures a response-time profile of the trace must find.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "trace_generator.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr,
                 "usage: gen_trace OUTPUT [MEGABYTES] [RANDOM_STATE] [9i|19c] [TRUTH_FILE]\n");
    return 2;
  }
  tracegen::GeneratorOptions options;
  const unsigned long long megabytes = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 10;
  options.target_bytes = megabytes << 20;
  if (argc > 3) options.random_state = std::strtoull(argv[3], nullptr, 10);
  if (argc > 4 && std::string(argv[4]) == "19c") options.format = tracegen::TraceFormat::kOracle19c;
  tracegen::GeneratedCounts counts;
  if (!tracegen::WriteTraceFile(argv[1], options, &counts)) {
    std::fprintf(stderr, "gen_trace: cannot write %s\n", argv[1]);
    return 1;
  }
  if (argc > 5) {
    std::ofstream truth(argv[5], std::ios::binary | std::ios::trunc);
    tracegen::WriteTruth(truth, counts.truth);
    truth.close();
    if (!truth) {
      std::fprintf(stderr, "gen_trace: cannot write %s\n", argv[5]);
      return 1;
    }
  }
  std::printf(
      "%s: %llu bytes, %llu lines, %llu statements, %llu waits, %llu binds\n", argv[1],
      static_cast<unsigned long long>(counts.bytes), static_cast<unsigned long long>(counts.lines),
      static_cast<unsigned long long>(counts.statements),
      static_cast<unsigned long long>(counts.waits), static_cast<unsigned long long>(counts.binds));
  return 0;
}
