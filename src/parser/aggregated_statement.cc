#include "parser/aggregated_statement.h"

#include <array>

#include "parser/call_xml_writer.h"
#include "parser/plan_tables.h"
#include "parser/stat_row_timing.h"
#include "parser/statement_summary.h"
#include "parser/wait_classes.h"

namespace parser {

namespace {

// <PARSE count="%I64d" cpu="%.2f" elapsed="%.2lf" disk="%I64d" query="%I64d" current="%I64d"
// rows="%I64d"></PARSE>
void WriteTotalsRow(OutputSink& out, std::string_view element, const CallTotals& totals,
                    double reciprocal) {
  out.Put('<');
  out.Write(element);
  out.Write(" count=\"");
  out.WriteInt(totals.count);
  out.Write("\" cpu=\"");
  out.WriteFixed2(totals.cpu * reciprocal);
  out.Write("\" elapsed=\"");
  out.WriteFixed2(totals.elapsed * reciprocal);
  out.Write("\" disk=\"");
  out.WriteInt(totals.disk);
  out.Write("\" query=\"");
  out.WriteInt(totals.query);
  out.Write("\" current=\"");
  out.WriteInt(totals.current);
  out.Write("\" rows=\"");
  out.WriteInt(totals.rows);
  out.Write("\"></");
  out.Write(element);
  out.Write(">\n");
}

void WriteTotals(OutputSink& out, TraceStatement& statement, std::int64_t time_divisor) {
  const double reciprocal = 1.0 / static_cast<double>(time_divisor);
  WriteTotalsRow(out, "PARSE", statement.totals[kParseTotals], reciprocal);
  WriteTotalsRow(out, "EXEC", statement.totals[kExecTotals], reciprocal);
  WriteTotalsRow(out, "FETCH", statement.totals[kFetchTotals], reciprocal);
  AddIntoGrandTotals(statement);
  WriteTotalsRow(out, "TOTAL", statement.totals[kGrandTotals], reciprocal);
}

void WriteWaitRow(OutputSink& out, std::string_view name, double elapsed) {
  out.Write("<WAITDATA name=\"");
  out.Write(name);
  out.Write("\" elapsed=\"");
  out.WriteFixed2(elapsed);
  out.Write("\"></WAITDATA>\n");
}

void WriteWaits(OutputSink& out, const TraceStatement& statement, AggregatedStyle style,
                std::int64_t time_divisor) {
  if (statement.waits.empty() && statement.wait_count == 0) return;
  std::array<double, kWaitClassCount> sums{};
  if (statement.waits.empty()) {
    sums = statement.wait_sums;  // a summary-only parse summed them as it read them
  } else {
    for (const WaitRecord& wait : statement.waits) {
      sums[WaitClassOf(wait.nam)] += static_cast<double>(wait.ela);
    }
  }
  double total = 0;
  for (const double sum : sums) total += sum;
  const auto divisor = static_cast<double>(time_divisor);
  const bool tkprof = style == AggregatedStyle::kTkprof;
  out.Write("<WAIT>\n");
  WriteWaitRow(out, tkprof ? "Total Waits" : "TotalWaits", total / divisor);
  WriteWaitRow(out, "Network", sums[kNetwork] / divisor);
  WriteWaitRow(out, tkprof ? "I/O" : "IO", sums[kIo] / divisor);
  WriteWaitRow(out, "Buffer", sums[kBuffer] / divisor);
  WriteWaitRow(out, "Lock", sums[kLock] / divisor);
  WriteWaitRow(out, "Latch", sums[kLatch] / divisor);
  WriteWaitRow(out, "Other", sums[kOther] / divisor);
  out.Write("</WAIT>\n");
}

// operation="TABLE ACCESS" option="FULL", then the row-source figures when the op has them.
void WriteSplitOp(OutputSink& out, const StatRecord& stat) {
  const PlanCodes codes = SplitOpText(stat.op);
  out.Write("\" operation=\"");
  out.Write(OperationName(codes.operation));
  out.Write("\" option=\"");
  out.Write(OptionName(codes.option));
  const StatRowTiming timing = ReadStatRowTiming(stat.op);
  if (!timing.present) return;
  out.Write("\" cr=\"");
  out.WriteInt(timing.cr);
  out.Write("\" r=\"");
  out.WriteInt(timing.r);
  out.Write("\" w=\"");
  out.WriteInt(timing.w);
  out.Write("\" time=\"");
  out.WriteXmlEscaped(timing.time);  // the rest of the op text: any byte may stand there
}

void WriteStatRow(OutputSink& out, const StatRecord& stat, AggregatedStyle style) {
  WriteStatDataStart(out, stat);
  if (style == AggregatedStyle::kSorted) WriteSplitOp(out, stat);
  out.Write("\"></STATDATA>\n");
}

void WriteStats(OutputSink& out, const TraceStatement& statement, AggregatedStyle style) {
  if (statement.stats.empty()) return;
  out.Write("<STAT>\n");
  for (const StatRecord& stat : statement.stats) WriteStatRow(out, stat, style);
  out.Write("</STAT>\n");
}

}  // namespace

void WriteAggregatedStatement(OutputSink& out, TraceStatement& statement, AggregatedStyle style,
                              std::int64_t time_divisor) {
  out.Write("<STATEMENT>\n");
  if (style == AggregatedStyle::kTkprof) {
    out.Write("<SQL>");
    out.WriteCdata(statement.SqlText());
    out.Write("</SQL>\n");
  }
  WriteTotals(out, statement, time_divisor);
  WriteWaits(out, statement, style, time_divisor);
  WriteStats(out, statement, style);
  out.Write("<MISSES miss=\"");
  out.WriteInt(FirstParseMisses(statement));
  out.Write("\"></MISSES>\n<OPTIMIZER goal=\"");
  out.Write(OptimizerGoalName(FirstExecGoal(statement)));
  out.Write("\"></OPTIMIZER>\n</STATEMENT>\n");
}

}  // namespace parser
