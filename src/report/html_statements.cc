// The statements' part of the HTML report.
#include <algorithm>

#include "report/figures_format.h"
#include "report/html_sections.h"
#include "report/html_style.h"
#include "report/svg_images.h"

namespace report {

namespace {

constexpr int kShareBarWidth = 160;

double ShareOf(Micros part, Micros whole) {
  return whole == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(whole);
}

std::string Title(const StatementProfile& s) {
  return s.text_known ? s.sql_text : "(" + s.sql_text + ": the trace starts after its parse)";
}

void StatementRow(const Profile& profile, const StatementProfile& s, std::size_t rank, bool linked,
                  HtmlPage& page) {
  const double share = ShareOf(s.exclusive_elapsed, profile.response_time);
  page.Raw("<tr>");
  page.Number(std::to_string(rank));
  page.Number(Percent(share));
  if (linked) {
    page.Raw(
        "<td>" +
        ImageElement(BarSvg(share, kShareBarWidth, kCpuColor), kShareBarWidth, 14, Percent(share)) +
        "</td>");
  }
  page.Number(ShortSeconds(s.exclusive_elapsed));
  page.Number(ShortSeconds(s.elapsed));
  page.Number(ShortSeconds(s.cpu));
  page.Number(Count(static_cast<std::int64_t>(s.Executions())));
  page.Number(PerExecution(s.Rows(), s.Executions()));
  page.Raw("<td class=\"sql\">");
  if (linked) page.Raw("<a href=\"#s" + std::to_string(rank) + "\">");
  page.Text(OneLine(Title(s), 160));
  if (linked) page.Raw("</a>");
  page.Raw("</td></tr>\n");
}

void StatementTableHead(bool with_bar, HtmlPage& page) {
  page.Raw("<table>\n<tr><th class=\"n\">#</th><th class=\"n\">Share</th>");
  if (with_bar) page.Raw("<th></th>");
  page.Raw(
      "<th class=\"n\">Own s</th><th class=\"n\">Inclusive s</th><th class=\"n\">CPU s"
      "</th><th class=\"n\">Executions</th><th class=\"n\">Rows/exec</th>"
      "<th>SQL text</th></tr>\n");
}

void CallTable(const StatementProfile& s, HtmlPage& page) {
  page.Raw(
      "<table>\n<tr><th>call</th><th class=\"n\">count</th><th class=\"n\">cpu</th>"
      "<th class=\"n\">elapsed</th><th class=\"n\">disk</th><th class=\"n\">query</th>"
      "<th class=\"n\">current</th><th class=\"n\">rows</th><th class=\"n\">misses</th>"
      "</tr>\n");
  static constexpr const char* kNames[kCallKinds] = {"Parse", "Execute", "Fetch"};
  CallFigures total;
  const auto row = [&page](const char* name, const CallFigures& c, bool is_total) {
    page.Raw(is_total ? "<tr class=\"total\"><td>" : "<tr><td>");
    page.Raw(name);
    page.Raw("</td>");
    page.Number(Count(static_cast<std::int64_t>(c.count)));
    page.Number(ShortSeconds(c.cpu));
    page.Number(ShortSeconds(c.elapsed));
    page.Number(Count(c.disk));
    page.Number(Count(c.query));
    page.Number(Count(c.current));
    page.Number(Count(c.rows));
    page.Number(Count(static_cast<std::int64_t>(c.misses)));
    page.Raw("</tr>\n");
  };
  for (std::size_t kind = 0; kind < kCallKinds; ++kind) {
    const CallFigures& c = s.calls[kind];
    row(kNames[kind], c, false);
    AddCallFigures(c, &total);
  }
  row("total", total, true);
  page.Raw("</table>\n");
}

void SkewTable(const StatementProfile& s, HtmlPage& page) {
  if (!s.has_executions) return;
  page.Raw(
      "<table>\n<tr><th>Per execution, ms</th><th class=\"n\">min</th>"
      "<th class=\"n\">median</th><th class=\"n\">max</th></tr>\n");
  const auto row = [&page](const char* name, const Skew& skew) {
    page.Raw("<tr><td>");
    page.Raw(name);
    page.Raw("</td>");
    page.Number(Milliseconds(skew.min));
    page.Number(Milliseconds(skew.median));
    page.Number(Milliseconds(skew.max));
    page.Raw("</tr>\n");
  };
  row("elapsed", s.elapsed_per_execution);
  row("cpu", s.cpu_per_execution);
  page.Raw("</table>\n");
}

void SplitTable(const StatementProfile& s, HtmlPage& page) {
  page.Raw(
      "<table>\n<tr><th>With recursive work</th><th class=\"n\">Seconds</th>"
      "<th class=\"n\">Share</th></tr>\n");
  for (const Component& line : s.Split()) {
    page.Raw("<tr><td>");
    page.Text(line.name);
    page.Raw("</td>");
    page.Number(ShortSeconds(line.time));
    page.Number(Percent(line.share));
    page.Raw("</tr>\n");
  }
  page.Raw("<tr class=\"total\"><td>elapsed</td>");
  page.Number(ShortSeconds(s.elapsed));
  page.Raw("<td></td></tr>\n<tr><td>own elapsed (recursive work excluded)</td>");
  page.Number(ShortSeconds(s.exclusive_elapsed));
  page.Raw("<td></td></tr>\n<tr><td>own cpu</td>");
  page.Number(ShortSeconds(s.exclusive_cpu));
  page.Raw("<td></td></tr>\n</table>\n");
}

void WaitTable(const StatementProfile& s, HtmlPage& page) {
  if (s.waits.empty()) return;
  page.Raw(
      "<h4>Waits on this cursor</h4>\n<table>\n<tr><th>Event</th><th class=\"n\">Times"
      "</th><th class=\"n\">Max ms</th><th class=\"n\">Total s</th><th>Durations</th>"
      "</tr>\n");
  for (const EventFigures& e : s.waits) {
    page.Raw("<tr><td>");
    page.Text(e.name);
    page.Raw("</td>");
    page.Number(Count(static_cast<std::int64_t>(e.count)));
    page.Number(Milliseconds(e.max));
    page.Number(ShortSeconds(e.total));
    page.Raw("<td>" + HistogramImage(e.histogram) + "</td></tr>\n");
  }
  page.Raw("</table>\n");
}

std::string FigureText(std::int64_t value) {
  return value < 0 ? "" : Count(value);
}

void PlanTable(const StatementProfile& s, HtmlPage& page) {
  if (s.plan.empty()) return;
  page.Raw(
      "<h4>Plan</h4>\n<table>\n<tr><th class=\"n\">Rows</th><th>Row source operation"
      "</th><th class=\"n\">cr</th><th class=\"n\">pr</th><th class=\"n\">pw</th>"
      "<th class=\"n\">time us</th><th class=\"n\">cost</th><th class=\"n\">card</th>"
      "</tr>\n");
  for (const PlanRow& row : s.plan) {
    page.Raw("<tr>");
    page.Number(Count(row.rows));
    page.Raw("<td class=\"val\" style=\"padding-left:" +
             std::to_string(8 + 14 * std::min(row.depth, 40)) + "px\">");
    page.Text(row.operation);
    page.Raw("</td>");
    for (const std::int64_t figure : {row.cr, row.pr, row.pw, row.time, row.cost, row.card}) {
      page.Number(FigureText(figure));
    }
    page.Raw("</tr>\n");
  }
  page.Raw("</table>\n");
}

void BindTable(const char* title, const ExecutionSample& execution, HtmlPage& page) {
  if (execution.number == 0) return;
  page.Raw("<h4>");
  page.Raw(title);
  page.Raw(" (execution " + std::to_string(execution.number) + ", " +
           Milliseconds(execution.elapsed) + " ms)</h4>\n");
  if (execution.binds.empty()) {
    page.Raw("<p class=\"note\">No bind values.</p>\n");
    return;
  }
  page.Raw("<table>\n<tr><th class=\"n\">Bind</th><th class=\"n\">Type</th><th>Value</th></tr>\n");
  for (const BindValue& bind : execution.binds) {
    page.Raw("<tr>");
    page.Number(std::to_string(bind.position));
    page.Number(std::to_string(bind.type));
    page.Raw("<td class=\"val\">");
    page.Text(bind.value);
    page.Raw("</td></tr>\n");
  }
  page.Raw("</table>\n");
}

void StatementSection(const Profile& profile, const StatementProfile& s, std::size_t rank,
                      HtmlPage& page) {
  page.Raw("<div class=\"statement\" id=\"s" + std::to_string(rank) + "\">\n<h3>" +
           std::to_string(rank) + ". " +
           Percent(ShareOf(s.exclusive_elapsed, profile.response_time)) + " of the response time");
  if (!s.sql_id.empty()) {
    page.Raw(", sql_id ");
    page.Text(s.sql_id);
  }
  page.Raw(", depth " + std::to_string(s.depth) + ", parsed " + std::to_string(s.parse_count) +
           " time(s)");
  if (s.parsing_user >= 0) page.Raw(", user id " + std::to_string(s.parsing_user));
  page.Raw("</h3>\n<pre class=\"sql\">");
  page.Text(Title(s));
  page.Raw("</pre>\n");
  CallTable(s, page);
  page.Raw("<div class=\"columns\"><div>\n");
  SplitTable(s, page);
  page.Raw("</div><div>\n");
  SkewTable(s, page);
  page.Raw("</div></div>\n");
  WaitTable(s, page);
  PlanTable(s, page);
  BindTable("Binds of the first execution", s.first_execution, page);
  if (s.slowest_execution.number != s.first_execution.number) {
    BindTable("Binds of the slowest execution", s.slowest_execution, page);
  }
  page.Raw("</div>\n");
}

}  // namespace

void StatementsSections(const Profile& profile, const HtmlOptions& options, HtmlPage& page) {
  if (profile.statements.empty()) return;
  const std::size_t top = std::min(options.top, profile.statements.size());
  page.Raw(
      "<h2 id=\"top\">Top statements</h2>\n<p class=\"note\">By their own elapsed time: "
      "recursive work counts for the statement that ran it (inclusive figures beside)."
      "</p>\n");
  StatementTableHead(true, page);
  for (std::size_t i = 0; i < top; ++i)
    StatementRow(profile, profile.statements[i], i + 1, true, page);
  page.Raw("</table>\n");
  for (std::size_t i = 0; i < top; ++i)
    StatementSection(profile, profile.statements[i], i + 1, page);
  if (profile.statements.size() == top) return;
  const std::size_t end = std::min(profile.statements.size(), top + options.other_rows);
  page.Raw("<h2 id=\"others\">Other statements</h2>\n");
  StatementTableHead(false, page);
  for (std::size_t i = top; i < end; ++i)
    StatementRow(profile, profile.statements[i], i + 1, false, page);
  page.Raw("</table>\n");
  if (end < profile.statements.size()) {
    page.Raw("<p class=\"note\">" +
             Count(static_cast<std::int64_t>(profile.statements.size() - end)) +
             " more statements, each with a smaller share, are left out.</p>\n");
  }
}

}  // namespace report
