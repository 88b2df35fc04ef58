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

}  // namespace parser
