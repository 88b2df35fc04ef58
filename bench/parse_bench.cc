// Parse throughput and peak memory on a generated trace (binds, waits, STAT rows) in the 9i or
// the 19c layout.
//   parse_bench [MEGABYTES=300] [REPEATS=3] [9i|19c]
// Writes the trace into the temporary directory, reads it once to bring it into the page cache,
// parses it REPEATS times into the statement table and prints MB/s of the best run and the
// peak resident memory of the process against the size of the trace. The file is removed.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "parser/trace_parser.h"
#include "support/os/process_memory.h"
#include "trace_generator.h"

namespace {

double Megabytes(std::uint64_t bytes) {
  return static_cast<double>(bytes) / (1024.0 * 1024.0);
}

void WarmPageCache(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<char> block(1 << 20);
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
  }
}

// Removes the trace however the benchmark ends.
struct RemoveOnExit {
  std::string path;
  ~RemoveOnExit() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t megabytes = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 300;
  const int repeats = argc > 2 ? std::atoi(argv[2]) : 3;
  const bool oracle19c = argc > 3 && std::string(argv[3]) == "19c";
  const RemoveOnExit trace{
      (std::filesystem::temp_directory_path() / "pelicor_parse_bench.trc").string()};

  tracegen::GeneratorOptions options;
  options.target_bytes = megabytes << 20;
  if (oracle19c) options.format = tracegen::TraceFormat::kOracle19c;
  tracegen::GeneratedCounts counts;
  if (!tracegen::WriteTraceFile(trace.path, options, &counts)) {
    std::fprintf(stderr, "parse_bench: cannot write %s\n", trace.path.c_str());
    return 1;
  }
  std::printf(
      "trace (%s): %.1f MB, %llu lines, %llu statements, %llu waits, %llu binds, %llu STAT rows\n",
      oracle19c ? "19c" : "9i", Megabytes(counts.bytes),
      static_cast<unsigned long long>(counts.lines),
      static_cast<unsigned long long>(counts.statements),
      static_cast<unsigned long long>(counts.waits), static_cast<unsigned long long>(counts.binds),
      static_cast<unsigned long long>(counts.stats));
  const auto before = os::PeakResidentMemoryBytes();
  WarmPageCache(trace.path);

  double best = 0;
  for (int run = 0; run < repeats; ++run) {
    parser::CTraceParser parser;
    const auto start = std::chrono::steady_clock::now();
    parser.Parse(trace.path, 0);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    const double rate = Megabytes(counts.bytes) / took.count();
    best = std::max(best, rate);
    std::printf("run %d: %.3f s, %.0f MB/s, %zu statements\n", run + 1, took.count(), rate,
                parser.ClosedStatements().size());
  }
  std::printf("parse: %.0f MB/s (best of %d)\n", best, repeats);
  const auto peak = os::PeakResidentMemoryBytes();
  if (peak) {
    std::printf("peak resident memory: %.1f MB (%.0f%% of the trace; %.1f MB before parsing)\n",
                Megabytes(*peak),
                100.0 * static_cast<double>(*peak) / static_cast<double>(counts.bytes),
                before ? Megabytes(*before) : 0.0);
  }
  return 0;
}
