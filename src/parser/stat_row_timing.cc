#include "parser/stat_row_timing.h"

#include <algorithm>
#include <charconv>

namespace parser {

namespace {

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

void SkipSpace(std::string_view& text) {
  std::size_t n = 0;
  while (n < text.size() && IsSpace(text[n])) ++n;
  text.remove_prefix(n);
}

bool TakeLiteral(std::string_view& text, std::string_view literal) {
  if (text.substr(0, literal.size()) != literal) return false;
  text.remove_prefix(literal.size());
  return true;
}

// scanf's %I64d: leading white space, an optional sign, decimal digits.
bool TakeInt64(std::string_view& text, std::int64_t* value) {
  SkipSpace(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

// "cr=%I64d r=%I64d w=%I64d": a blank in the pattern matches any run of white space, none too.
void ReadCounts(std::string_view text, StatRowTiming* timing) {
  if (!TakeLiteral(text, "cr=") || !TakeInt64(text, &timing->cr)) return;
  SkipSpace(text);
  if (!TakeLiteral(text, "r=") || !TakeInt64(text, &timing->r)) return;
  SkipSpace(text);
  if (!TakeLiteral(text, "w=")) return;
  TakeInt64(text, &timing->w);
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// From 10g on the figures are named after physical reads and writes, and later releases add
// the starts, the cost and the estimates around the time:
//   (cr=5 pr=1 pw=0 str=1 time=439 us cost=4 size=246 card=6)
// True when `text` (from "cr=") is of that form; cr, r and w then come from cr, pr and pw.
bool ReadNewerCounts(std::string_view text, StatRowTiming* timing) {
  std::int64_t cr = 0;
  if (!TakeLiteral(text, "cr=") || !TakeInt64(text, &cr)) return false;
  SkipSpace(text);
  if (!TakeLiteral(text, "pr=")) return false;
  timing->cr = cr;
  if (!TakeInt64(text, &timing->r)) return true;
  SkipSpace(text);
  if (TakeLiteral(text, "pw=")) TakeInt64(text, &timing->w);
  return true;
}

// "439 us cost=4 size=246 card=6)" -> "439 us": the time ends where the cost or the group ends.
std::string_view NewerTime(std::string_view time) {
  const std::size_t end = std::min(time.find(" cost="), time.find(')'));
  return end == std::string_view::npos ? time : time.substr(0, end);
}

}  // namespace

StatRowTiming ReadStatRowTiming(std::string_view op) {
  StatRowTiming timing;
  timing.present =
      Contains(op, "cr=") && Contains(op, "r=") && Contains(op, "w=") && Contains(op, "time=");
  if (!timing.present) return timing;
  const std::string_view counts = op.substr(op.find("cr="));
  std::string_view time = op.substr(op.find("time=") + 5);
  if (ReadNewerCounts(counts, &timing)) {
    timing.time = NewerTime(time);
    return timing;
  }
  ReadCounts(counts, &timing);
  if (Contains(time, ")")) time.remove_suffix(1);
  timing.time = time;
  return timing;
}

}  // namespace parser
