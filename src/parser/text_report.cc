#include "parser/text_report.h"

#include "parser/statement_summary.h"

namespace parser {

namespace {

constexpr std::string_view kStars =
    "********************************************************************************";
constexpr std::string_view kDashes =
    "------- ------  -------- ---------- ---------- ---------- ----------  ----------\n";

void WriteSortOptions(OutputSink& out, const SortOptions* options) {
  out.Write("Sort options: ");
  if (options != nullptr) {
    // The ", " stands before exe and fch even when nothing precedes it: "Sort options: , exe2".
    if (options->Prs()) {
      out.Write("prs");
      out.WriteInt(options->Key());
    }
    if (options->Exe()) {
      out.Write(", exe");
      out.WriteInt(options->Key());
    }
    if (options->Fch()) {
      out.Write(", fch");
      out.WriteInt(options->Key());
    }
  }
  out.Put('\n');
}

void WriteHeader(OutputSink& out, const SortOptions* options) {
  out.Write("\nVelkaro: Release 1.0\n\nCopyright (c) 2026 Pelicor contributors\n\n");
  out.Write(kStars);
  out.Write(
      "\ncount    = number of times OCI procedure was executed\n"
      "cpu      = cpu time in seconds executing\n"
      "elapsed  = elapsed time in seconds executing\n"
      "disk     = number of physical reads of buffers from disk\n"
      "query    = number of buffers gotten for consistent read\n"
      "current  = number of buffers gotten in current mode (usually for update)\n"
      "rows     = number of rows processed by the fetch or execute call\n");
  out.Write(kStars);
  out.Write("\n\n");
  WriteSortOptions(out, options);
}

// "Parse   %6I64d  %8.2lf %10.2lf %10I64d %10I64d %10I64d  %10I64d\n"
void WriteRow(OutputSink& out, std::string_view label, const CallTotals& totals,
              double reciprocal) {
  out.Write(label);
  out.WriteInt(totals.count, 6);
  out.Write("  ");
  out.WriteFixed2(totals.cpu * reciprocal, 8);
  out.Put(' ');
  out.WriteFixed2(totals.elapsed * reciprocal, 10);
  out.Put(' ');
  out.WriteInt(totals.disk, 10);
  out.Put(' ');
  out.WriteInt(totals.query, 10);
  out.Put(' ');
  out.WriteInt(totals.current, 10);
  out.Write("  ");
  out.WriteInt(totals.rows, 10);
  out.Put('\n');
}

void WriteStatement(OutputSink& out, TraceStatement& statement, double reciprocal) {
  out.Put('\n');
  out.Write(statement.SqlText());
  out.Write(
      "\n\ncall     count       cpu    elapsed       disk      query    current        rows\n");
  out.Write(kDashes);
  WriteRow(out, "Parse   ", statement.totals[kParseTotals], reciprocal);
  WriteRow(out, "Execute ", statement.totals[kExecTotals], reciprocal);
  WriteRow(out, "Fetch   ", statement.totals[kFetchTotals], reciprocal);
  out.Write(kDashes);
  AddIntoGrandTotals(statement);
  WriteRow(out, "total   ", statement.totals[kGrandTotals], reciprocal);
  out.Write("\nMisses in library cache during parse: ");
  out.WriteInt(FirstParseMisses(statement));
  out.Write("\nOptimizer goal: ");
  out.Write(OptimizerGoalName(FirstExecGoal(statement)));
  // The user id is not known here; the label stands alone.
  out.Write("\nParsing user id:\n\n");
  out.Write(kStars);
  out.Put('\n');
}

}  // namespace

void WriteTextReport(StatementList& closed, const DocumentContext& context, OutputSink& out) {
  WriteHeader(out, context.sort_options);
  const double reciprocal = 1.0 / static_cast<double>(context.time_divisor);
  for (const auto& statement : closed) WriteStatement(out, *statement, reciprocal);
}

void WriteTextReport(StatementList& closed, const DocumentContext& context, std::ostream& stream) {
  OutputSink out(stream);
  WriteTextReport(closed, context, out);
  out.Close();
}

}  // namespace parser
