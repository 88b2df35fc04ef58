// Throughput of the document writers and the text report over a large statement table built in
// memory: 10000 statements with 100 calls, 100 waits, 10 binds and 5 STAT rows each (1 million
// calls and waits). Besides the output rate, each case reports the rate in bytes of the trace
// lines the records stand for ("trace_bytes_per_second"), the figure the end-to-end targets are
// given in. The "Generated" cases run the same writers over the statements parsed from a
// generated 100 MB trace, in the 9i and in the 19c layout (argument 0 and 1).
#include <benchmark/benchmark.h>

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <streambuf>
#include <string>

#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/sort_step.h"
#include "parser/text_report.h"
#include "parser/trace_parser.h"
#include "parser/xml_paths.h"
#include "trace_generator.h"

namespace {

using namespace parser;

constexpr int kStatements = 10000;
constexpr int kCallsPerKind = 33;
constexpr int kWaits = 100;
constexpr int kBinds = 10;
constexpr int kStats = 5;

const char* const kEvents[] = {"SQL*Net message to client",
                               "SQL*Net message from client",
                               "db file sequential read",
                               "db file scattered read",
                               "latch free",
                               "enqueue",
                               "log file sync"};

// Lengths of the trace lines the records stand for, to express rates in trace bytes.
std::size_t CallLineLength(const CallRecord& call) {
  char line[256];
  return static_cast<std::size_t>(std::snprintf(
      line, sizeof line,
      "FETCH #1:c=%" PRId64 ",e=%" PRId64 ",p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=%" PRId64 "\n",
      call.c, call.e, call.tim));
}

std::size_t WaitLineLength(const WaitRecord& wait) {
  char line[256];
  return static_cast<std::size_t>(std::snprintf(
      line, sizeof line,
      "WAIT #1: nam='%s' ela= %" PRId64 " p1=%" PRId64 " p2=%" PRId64 " p3=%" PRId64 "\n",
      std::string(wait.nam).c_str(), wait.ela, wait.p1, wait.p2, wait.p3));
}

CallRecord MakeCall(std::int64_t i, std::size_t* trace_bytes) {
  const CallRecord call{1, i % 1000, i % 1700, 0, 4, 0, 0, 1, 0, 4, 1083929217634352 + i};
  *trace_bytes += CallLineLength(call);
  return call;
}

std::unique_ptr<TraceStatement> MakeStatement(int n, std::size_t* trace_bytes) {
  auto s = std::make_unique<TraceStatement>();
  s->cursor = static_cast<CursorNo>(n % 50 + 1);
  s->header = {s->cursor,
               60,
               n % 3,
               5,
               3,
               5,
               1083929217633781,
               3918581285,
               "6b3d1f2c",
               "select ename, sal from emp where deptno = :1 and job = :2 /* " + std::to_string(n) +
                   " */\n"};
  *trace_bytes += 110 + s->header.text.size() + 12;  // PARSING IN CURSOR, text, END OF STMT
  for (int i = 0; i < kCallsPerKind; ++i) {
    const CallRecord call = MakeCall(n * 100 + i, trace_bytes);
    s->parse_calls.push_back(call);
    s->totals[kParseTotals].Add(call);
    s->exec_calls.push_back(ExecCallRecord{MakeCall(n * 100 + i, trace_bytes), i % kBinds});
    s->totals[kExecTotals].Add(s->exec_calls.back());
    s->fetch_calls.push_back(MakeCall(n * 100 + i, trace_bytes));
    s->totals[kFetchTotals].Add(s->fetch_calls.back());
  }
  for (int i = 0; i < kBinds; ++i) {
    s->binds.push_back(BindRecord{s->cursor, 0, 1, 32, 0, 0, 0, 0, 3, 16, 32, 0, 32, 5, 5, i,
                                  "0a4f1c08", "CLERK"});
    *trace_bytes += 14 + 84 + 42 + 20;  // BINDS #n:, bind, bfp and value lines
  }
  for (int i = 0; i < kWaits; ++i) {
    const WaitRecord wait{s->cursor, kEvents[i % 7], 12 + i, 4, 1234 + i, 1, 1083929217634352 + i};
    s->waits.push_back(wait);
    *trace_bytes += WaitLineLength(wait);
  }
  for (int i = 0; i < kStats; ++i) {
    s->stats.push_back(StatRecord{s->cursor, i + 1, 14, i, 1, 31,
                                  "TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)"});
    *trace_bytes += 100;
  }
  return s;
}

struct Table {
  StatementList closed;
  std::size_t trace_bytes = 0;
  std::size_t records = 0;
};

Table& SharedTable() {
  static Table* table = [] {
    auto* t = new Table;
    for (int n = 0; n < kStatements; ++n) t->closed.push_back(MakeStatement(n, &t->trace_bytes));
    t->records =
        static_cast<std::size_t>(kStatements) * (3 * kCallsPerKind + kWaits + kBinds + kStats + 1);
    return t;
  }();
  return *table;
}

// The statements of a generated 100 MB trace; the parser that owns them is kept with them.
struct ParsedTable {
  parser::CTraceParser parser;
  std::size_t trace_bytes = 0;
  std::size_t records = 0;
};

ParsedTable& GeneratedTable(bool oracle19c) {
  static ParsedTable* tables[2] = {nullptr, nullptr};
  ParsedTable*& table = tables[oracle19c ? 1 : 0];
  if (table != nullptr) return *table;
  table = new ParsedTable;
  tracegen::GeneratorOptions options;
  options.target_bytes = std::uint64_t{100} << 20;
  if (oracle19c) options.format = tracegen::TraceFormat::kOracle19c;
  const std::string path =
      (std::filesystem::temp_directory_path() / "pelicor_writers_bench.trc").string();
  tracegen::GeneratedCounts counts;
  tracegen::WriteTraceFile(path, options, &counts);
  table->parser.Parse(path, 0);
  std::filesystem::remove(path);
  table->trace_bytes = counts.bytes;
  table->records = counts.lines;
  return *table;
}

std::string ScratchName(const char* name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

// records: what the table holds (for a generated table, the lines of its trace).
template <typename AnyTable>
void Report(benchmark::State& state, const AnyTable& table, std::uintmax_t output_bytes) {
  const auto iterations = static_cast<double>(state.iterations());
  state.counters["output_bytes_per_second"] =
      benchmark::Counter(static_cast<double>(output_bytes) * iterations,
                         benchmark::Counter::kIsRate, benchmark::Counter::kIs1024);
  state.counters["trace_bytes_per_second"] =
      benchmark::Counter(static_cast<double>(table.trace_bytes) * iterations,
                         benchmark::Counter::kIsRate, benchmark::Counter::kIs1024);
  state.counters["records_per_second"] = benchmark::Counter(
      static_cast<double>(table.records) * iterations, benchmark::Counter::kIsRate);
}

void BM_CallXml(benchmark::State& state) {
  Table& table = SharedTable();
  DocumentContext context;
  context.output_directory = ScratchName("");
  for (auto _ : state) WriteCallXml(table.closed, context, "pelicor_bench_call.trc");
  const std::string path = CallXmlPath("pelicor_bench_call.trc", context.output_directory);
  Report(state, table, std::filesystem::file_size(path));
  std::filesystem::remove(path);
}

void BM_TkprofXml(benchmark::State& state) {
  Table& table = SharedTable();
  DocumentContext context;
  context.oracle_major_version = 9;
  const std::string name = ScratchName("pelicor_bench_tkprof.trc");
  for (auto _ : state) WriteTkprofXml(table.closed, context, name);
  Report(state, table, std::filesystem::file_size(AggregatedXmlPath(name)));
  std::filesystem::remove(AggregatedXmlPath(name));
}

// A null stream: the report's own cost, without a terminal or a file behind it.
class CountingBuffer : public std::streambuf {
 public:
  std::uintmax_t count = 0;

 protected:
  std::streamsize xsputn(const char*, std::streamsize n) override {
    count += static_cast<std::uintmax_t>(n);
    return n;
  }
  int_type overflow(int_type c) override {
    ++count;
    return c;
  }
};

void BM_TextReport(benchmark::State& state) {
  Table& table = SharedTable();
  DocumentContext context;
  CountingBuffer buffer;
  std::ostream stream(&buffer);
  for (auto _ : state) WriteTextReport(table.closed, context, stream);
  Report(state, table, buffer.count / static_cast<std::uintmax_t>(state.iterations()));
}

void BM_SortStep(benchmark::State& state) {
  Table& table = SharedTable();
  const SortOptions options(true, true, true, 2);
  for (auto _ : state) SortStatements(table.closed, &options);
  state.counters["statements_per_second"] = benchmark::Counter(
      static_cast<double>(table.closed.size()) * static_cast<double>(state.iterations()),
      benchmark::Counter::kIsRate);
}

void BM_GeneratedCallXml(benchmark::State& state) {
  ParsedTable& table = GeneratedTable(state.range(0) == 1);
  DocumentContext context = table.parser.MakeDocumentContext();
  context.output_directory = ScratchName("");
  for (auto _ : state) WriteCallXml(table.parser.ClosedStatements(), context, "pelicor_gen.trc");
  const std::string path = CallXmlPath("pelicor_gen.trc", context.output_directory);
  Report(state, table, std::filesystem::file_size(path));
  std::filesystem::remove(path);
}

void BM_GeneratedTkprofXml(benchmark::State& state) {
  ParsedTable& table = GeneratedTable(state.range(0) == 1);
  const DocumentContext context = table.parser.MakeDocumentContext();
  const std::string name = ScratchName("pelicor_gen_tkprof.trc");
  for (auto _ : state) WriteTkprofXml(table.parser.ClosedStatements(), context, name);
  Report(state, table, std::filesystem::file_size(AggregatedXmlPath(name)));
  std::filesystem::remove(AggregatedXmlPath(name));
}

void BM_GeneratedTextReport(benchmark::State& state) {
  ParsedTable& table = GeneratedTable(state.range(0) == 1);
  const DocumentContext context = table.parser.MakeDocumentContext();
  CountingBuffer buffer;
  std::ostream stream(&buffer);
  for (auto _ : state) WriteTextReport(table.parser.ClosedStatements(), context, stream);
  Report(state, table, buffer.count / static_cast<std::uintmax_t>(state.iterations()));
}

}  // namespace

BENCHMARK(BM_GeneratedCallXml)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_GeneratedTkprofXml)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_GeneratedTextReport)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CallXml)->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();
BENCHMARK(BM_TkprofXml)->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();
BENCHMARK(BM_TextReport)->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();
BENCHMARK(BM_SortStep)->Unit(benchmark::kMillisecond)->MinTime(1)->UseRealTime();
BENCHMARK_MAIN();
