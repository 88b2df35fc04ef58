#include "parser/line_text.h"

namespace parser {

bool IsSizeLimitLine(std::string_view line) {
  // Most lines hold no asterisk at all; look for one before anything else.
  if (std::memchr(line.data(), '*', line.size()) == nullptr) return false;
  if (!Contains(line, "***")) return false;
  if (!Contains(line, "file") && !Contains(line, "FILE")) return false;
  return !Contains(line, "*** TRACE DUMP CONTINUED FROM FILE") &&
         !Contains(line, "*** TRACE CONTINUED FROM FILE");
}

bool IsDumpSizeLimitLine(std::string_view line) {
  constexpr std::string_view kStart = "*** DUMP FILE SIZE IS LIMITED TO ";
  constexpr std::string_view kEnd = " BYTES ***";
  if (line.substr(0, kStart.size()) != kStart) return false;
  std::size_t at = kStart.size();
  const std::size_t digits = at;
  while (at < line.size() && line[at] >= '0' && line[at] <= '9') ++at;
  if (at == digits || line.substr(at, kEnd.size()) != kEnd) return false;
  return IsBlank(line.substr(at + kEnd.size()));
}

}  // namespace parser
