#include "report/figures_format.h"

#include <cstdio>

namespace report {

std::string Seconds(Micros micros) {
  const bool negative = micros < 0;
  const std::uint64_t magnitude =
      negative ? 0 - static_cast<std::uint64_t>(micros) : static_cast<std::uint64_t>(micros);
  char text[40];
  std::snprintf(text, sizeof text, "%s%llu.%06llu", negative ? "-" : "",
                static_cast<unsigned long long>(magnitude / 1000000),
                static_cast<unsigned long long>(magnitude % 1000000));
  return text;
}

std::string ShortSeconds(Micros micros) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(micros) / 1e6);
  return text;
}

std::string Milliseconds(Micros micros) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(micros) / 1e3);
  return text;
}

std::string Percent(double share) {
  char text[40];
  std::snprintf(text, sizeof text, "%.1f%%", share * 100.0);
  return text;
}

std::string Count(std::int64_t count) {
  std::string digits = std::to_string(count < 0 ? -count : count);
  std::string grouped;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) grouped += ',';
    grouped += digits[i];
  }
  return count < 0 ? "-" + grouped : grouped;
}

std::string PerExecution(std::int64_t total, std::uint64_t executions) {
  if (executions == 0) return "-";
  char text[40];
  std::snprintf(text, sizeof text, "%.1f",
                static_cast<double>(total) / static_cast<double>(executions));
  return text;
}

std::string OneLine(std::string_view text, std::size_t width) {
  std::string line;
  bool blank = false;
  for (const char c : text) {
    const bool space = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (space) {
      blank = !line.empty();
      continue;
    }
    if (blank) line += ' ';
    blank = false;
    line += c;
    if (line.size() > width) break;
  }
  if (line.size() > width) {
    line.resize(width > 3 ? width - 3 : 0);
    // Never end inside a UTF-8 sequence: drop its continuation bytes and its lead byte.
    while (!line.empty() && (static_cast<unsigned char>(line.back()) & 0xC0) == 0x80) {
      line.pop_back();
    }
    if (!line.empty() && static_cast<unsigned char>(line.back()) >= 0xC0) line.pop_back();
    line += "...";
  }
  return line;
}

}  // namespace report
