#include "report/profile_text.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "report/figures_format.h"

namespace report {

namespace {

constexpr std::size_t kWidth = 100;

// The text padded (or cut) to `width` columns, left- or right-aligned.
std::string Left(const std::string& text, std::size_t width) {
  if (text.size() >= width) return text.substr(0, width);
  return text + std::string(width - text.size(), ' ');
}

std::string Right(const std::string& text, std::size_t width) {
  if (text.size() >= width) return text;
  return std::string(width - text.size(), ' ') + text;
}

// The text on lines of at most kWidth columns, broken at blanks where it can.
void Wrapped(const std::string& text, std::ostream& out) {
  std::size_t at = 0;
  while (text.size() - at > kWidth) {
    std::size_t end = text.rfind(' ', at + kWidth);
    if (end == std::string::npos || end <= at) end = at + kWidth;
    out << text.substr(at, end - at) << '\n';
    at = end < text.size() && text[end] == ' ' ? end + 1 : end;
  }
  out << text.substr(at) << '\n';
}

void Rule(std::ostream& out, char c = '-') {
  out << std::string(kWidth, c) << '\n';
}

void Header(const Profile& profile, std::ostream& out) {
  const HeaderFacts& header = profile.header;
  Wrapped("Response-time profile of " + header.file, out);
  if (!header.release.empty()) Wrapped(header.release, out);
  if (!header.version.empty()) Wrapped(header.version, out);
  std::string where;
  if (!header.instance.empty()) where += "instance " + header.instance;
  if (!header.node.empty()) where += (where.empty() ? "node " : " on ") + header.node;
  if (!header.os_process.empty())
    where += (where.empty() ? "" : ", ") + std::string("process ") + header.os_process;
  if (!where.empty()) Wrapped(where, out);
  out << "Response time " << Seconds(profile.response_time) << " s in " << profile.sessions.size()
      << (profile.sessions.size() == 1 ? " session, " : " sessions, ")
      << Count(static_cast<std::int64_t>(profile.calls)) << " database calls"
      << (header.centiseconds ? " (trace times in centiseconds)" : "") << "\n\n";
}

void ComponentRow(const std::string& name, Micros time, double share, std::uint64_t count,
                  const std::string& average, const std::string& maximum, std::ostream& out) {
  std::string row = Left(name, 42) + Right(ShortSeconds(time), 12) + Right(Percent(share), 8) +
                    Right(count == 0 ? "" : Count(static_cast<std::int64_t>(count)), 12) +
                    Right(average, 13) + Right(maximum, 13);
  while (!row.empty() && row.back() == ' ') row.pop_back();
  out << row << '\n';
}

void ResponseTimeTable(const Profile& profile, std::ostream& out) {
  out << Left("Component", 42) << Right("Seconds", 12) << Right("Share", 8) << Right("Count", 12)
      << Right("Average ms", 13) << Right("Maximum ms", 13) << '\n';
  Rule(out);
  bool idle_heading = false;
  for (const Component& line : profile.Components()) {
    std::string average, maximum;
    if (line.kind == ComponentKind::kWait || line.kind == ComponentKind::kIdle) {
      const auto event = std::find_if(profile.events.begin(), profile.events.end(),
                                      [&](const EventFigures& e) { return e.name == line.name; });
      if (event != profile.events.end()) {
        average = Milliseconds(event->Average());
        maximum = Milliseconds(event->max);
      }
    }
    if (line.kind == ComponentKind::kIdle && !idle_heading) {
      out << "Between calls (idle):\n";
      idle_heading = true;
    }
    ComponentRow((line.kind == ComponentKind::kIdle ? "  " : "") + line.name, line.time, line.share,
                 line.count, average, maximum, out);
  }
  Rule(out);
  ComponentRow("Total response time", profile.response_time, profile.response_time == 0 ? 0 : 1, 0,
               "", "", out);
  out << '\n';
}

void TopStatements(const Profile& profile, std::size_t top, std::ostream& out) {
  out << "Top statements by their own elapsed time (recursive work excluded; inclusive beside)\n";
  out << Right("#", 3) << Right("Share", 7) << Right("Own s", 11) << Right("Incl. s", 11)
      << Right("CPU s", 10) << Right("Execs", 9) << Right("Rows/ex", 9) << "  SQL text\n";
  Rule(out);
  const std::size_t shown = std::min(top, profile.statements.size());
  for (std::size_t i = 0; i < shown; ++i) {
    const StatementProfile& s = profile.statements[i];
    const double share =
        profile.response_time == 0
            ? 0
            : static_cast<double>(s.exclusive_elapsed) / static_cast<double>(profile.response_time);
    out << Right(std::to_string(i + 1), 3) << Right(Percent(share), 7)
        << Right(ShortSeconds(s.exclusive_elapsed), 11) << Right(ShortSeconds(s.elapsed), 11)
        << Right(ShortSeconds(s.cpu), 10)
        << Right(Count(static_cast<std::int64_t>(s.Executions())), 9)
        << Right(PerExecution(s.Rows(), s.Executions()), 9) << "  "
        << OneLine(s.text_known ? s.sql_text : "(" + s.sql_text + ", text not in trace)", 38)
        << '\n';
  }
  if (profile.statements.size() > shown) {
    out << "   ... and " << profile.statements.size() - shown << " more statements\n";
  }
  out << '\n';
}

void CallTable(const StatementProfile& s, std::ostream& out) {
  out << "call        count        cpu    elapsed       disk      query    current       rows\n";
  static constexpr const char* kNames[kCallKinds] = {"Parse", "Execute", "Fetch"};
  CallFigures total;
  for (std::size_t kind = 0; kind < kCallKinds; ++kind) {
    const CallFigures& c = s.calls[kind];
    out << Left(kNames[kind], 8) << Right(Count(static_cast<std::int64_t>(c.count)), 9)
        << Right(ShortSeconds(c.cpu), 11) << Right(ShortSeconds(c.elapsed), 11)
        << Right(Count(c.disk), 11) << Right(Count(c.query), 11) << Right(Count(c.current), 11)
        << Right(Count(c.rows), 11) << '\n';
    AddCallFigures(c, &total);
  }
  out << Left("total", 8) << Right(Count(static_cast<std::int64_t>(total.count)), 9)
      << Right(ShortSeconds(total.cpu), 11) << Right(ShortSeconds(total.elapsed), 11)
      << Right(Count(total.disk), 11) << Right(Count(total.query), 11)
      << Right(Count(total.current), 11) << Right(Count(total.rows), 11) << '\n';
}

void StatementDetail(const StatementProfile& s, std::size_t rank, std::ostream& out) {
  Rule(out, '=');
  out << "Statement " << rank;
  if (!s.sql_id.empty()) out << "  sql_id " << s.sql_id;
  out << "  depth " << s.depth << "  parsed " << s.parse_count << " time(s)\n";
  Wrapped(OneLine(s.text_known ? s.sql_text : "(" + s.sql_text + ", text not in trace)", 1000),
          out);
  out << '\n';
  CallTable(s, out);
  if (s.has_executions) {
    out << '\n'
        << Left("Per execution ms", 16) << Right("min", 11) << Right("median", 11)
        << Right("max", 11) << '\n';
    for (const auto& [name, skew] :
         {std::pair<const char*, Skew>{"elapsed", s.elapsed_per_execution},
          std::pair<const char*, Skew>{"cpu", s.cpu_per_execution}}) {
      out << "  " << Left(name, 14) << Right(Milliseconds(skew.min), 11)
          << Right(Milliseconds(skew.median), 11) << Right(Milliseconds(skew.max), 11) << '\n';
    }
  }
  out << "\nResponse time with recursive work: " << Seconds(s.elapsed) << " s\n";
  for (const Component& line : s.Split()) {
    out << "  " << Left(line.name, 40) << Right(ShortSeconds(line.time), 12)
        << Right(Percent(line.share), 8) << '\n';
  }
  if (!s.waits.empty()) {
    out << "\n"
        << Left("Waits on this cursor", 42) << Right("Times", 12) << Right("Max ms", 13)
        << Right("Total s", 13) << '\n';
    for (const EventFigures& e : s.waits) {
      out << "  " << Left(e.name, 40) << Right(Count(static_cast<std::int64_t>(e.count)), 12)
          << Right(Milliseconds(e.max), 13) << Right(ShortSeconds(e.total), 13) << '\n';
    }
  }
  out << '\n';
}

}  // namespace

void WriteProfileText(const Profile& profile, std::size_t top, std::ostream& out) {
  Header(profile, out);
  ResponseTimeTable(profile, out);
  TopStatements(profile, top, out);
  const std::size_t shown = std::min(top, profile.statements.size());
  for (std::size_t i = 0; i < shown; ++i) StatementDetail(profile.statements[i], i + 1, out);
}

}  // namespace report
