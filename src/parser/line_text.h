// Small helpers over one trace line, which the parser treats as a zero-terminated string: the
// text ends at its first NUL byte, and a character position beyond the end reads as NUL.
#ifndef PELICOR_PARSER_LINE_TEXT_H_
#define PELICOR_PARSER_LINE_TEXT_H_

#include <cstddef>
#include <cstring>
#include <string_view>

namespace parser {

// Character `i` of the line, NUL past its end.
inline char CharAt(std::string_view line, std::size_t i) {
  return i < line.size() ? line[i] : '\0';
}

inline bool Contains(std::string_view line, std::string_view needle) {
  return line.find(needle) != std::string_view::npos;
}

// The line up to its first NUL byte.
inline std::string_view UpToNul(std::string_view line) {
  const void* nul = std::memchr(line.data(), '\0', line.size());
  if (nul == nullptr) return line;
  return line.substr(0, static_cast<std::size_t>(static_cast<const char*>(nul) - line.data()));
}

// The text without its last `n` characters (empty when it is shorter).
inline std::string_view DropLast(std::string_view text, std::size_t n) {
  return text.size() > n ? text.substr(0, text.size() - n) : std::string_view();
}

// The text from position `from` on (empty when `from` lies past its end).
inline std::string_view From(std::string_view text, std::size_t from) {
  return from < text.size() ? text.substr(from) : std::string_view();
}

// True when the text holds nothing but white space (or nothing).
inline bool IsBlank(std::string_view text) {
  for (const char c : text) {
    if (c != ' ' && (c < '\t' || c > '\r')) return false;
  }
  return true;
}

// The line that ends a cursor's SQL text: "END OF STMT" with its line end, if any.
inline bool IsEndOfStatement(std::string_view line) {
  constexpr std::string_view kEnd = "END OF STMT";
  return line.substr(0, kEnd.size()) == kEnd && IsBlank(line.substr(kEnd.size()));
}

// True for a line that tells that the server stopped writing the trace at its size limit:
//   *** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***
// that is, any line with three asterisks and "file" or "FILE" in it, except the lines that say
// the trace goes on from an earlier file (*** TRACE DUMP CONTINUED FROM FILE ... ***).
bool IsSizeLimitLine(std::string_view line);

// Oracle's own size-limit line and nothing else, for traces of 10g and later, whose header
// lines hold "file" innocently ("*** MODULE NAME:(ProfileService) ..."):
//   *** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***
bool IsDumpSizeLimitLine(std::string_view line);

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_TEXT_H_
