#include "report/plan_rows.h"

#include <charconv>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace report {

namespace {

// The number behind "name=" in the figures, where the name stands after a blank or the
// opening parenthesis ("r=" must not be found inside "cr="); -1 without one.
std::int64_t Figure(std::string_view figures, std::string_view name) {
  for (std::size_t at = figures.find(name); at != std::string_view::npos;
       at = figures.find(name, at + 1)) {
    const char before = at == 0 ? '(' : figures[at - 1];
    const std::size_t value = at + name.size();
    if ((before != ' ' && before != '(') || value >= figures.size() || figures[value] != '=') {
      continue;
    }
    std::int64_t number = -1;
    const char* first = figures.data() + value + 1;
    if (std::from_chars(first, figures.data() + figures.size(), number).ec != std::errc()) {
      return -1;
    }
    return number;
  }
  return -1;
}

}  // namespace

PlanRow ReadOperation(std::string_view op) {
  PlanRow row;
  const std::size_t open = op.rfind(" (cr=");
  if (open == std::string_view::npos) {
    row.operation = std::string(op);
    while (!row.operation.empty() && row.operation.back() == ' ') row.operation.pop_back();
    return row;
  }
  row.operation = std::string(op.substr(0, open));
  const std::string_view figures = op.substr(open + 1);
  row.cr = Figure(figures, "cr");
  row.pr = Figure(figures, "pr");
  if (row.pr < 0) row.pr = Figure(figures, "r");  // 9i: "(cr=8 r=0 w=0 time=290 us)"
  row.pw = Figure(figures, "pw");
  if (row.pw < 0) row.pw = Figure(figures, "w");
  row.time = Figure(figures, "time");
  row.cost = Figure(figures, "cost");
  row.card = Figure(figures, "card");
  return row;
}

std::vector<PlanRow> PlanRows(const std::vector<parser::StatRecord>& stats) {
  std::size_t first = 0;
  for (std::size_t i = 0; i < stats.size(); ++i) {
    if (stats[i].id == 1) first = i;
  }
  std::vector<PlanRow> rows;
  std::unordered_map<std::int32_t, std::int32_t> depth_of;
  for (std::size_t i = first; i < stats.size(); ++i) {
    const parser::StatRecord& stat = stats[i];
    if (i > first && stat.id == 1) break;
    PlanRow row = ReadOperation(stat.op);
    row.id = stat.id;
    row.parent = stat.pid;
    row.rows = stat.cnt;
    row.object = stat.obj;
    const auto parent = depth_of.find(stat.pid);
    row.depth = parent == depth_of.end() ? 0 : parent->second + 1;
    depth_of[stat.id] = row.depth;
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace report
