// Cursor-style scanning of the fields of one trace line.
//
// The trace line formats were written for formatted scanning (scanf), and the values a line
// yields must be the ones that scanning gives, malformed lines included:
//   - a blank in the format matches any run of white space in the line, none included;
//   - any other format character must be the next character of the line;
//   - a number skips leading white space, takes an optional sign and at least one decimal digit;
//     a 32-bit field takes the value as the C library does (clamped to 64 bits, then cut to 32);
//   - a word skips leading white space and takes the run of non-blank characters behind it;
//   - the first mismatch stops the scan silently, and every field not reached keeps its value.
// A FieldScanner is one such scan. Each step returns the scanner, so a format reads as a chain:
//   FieldScanner(line).Literal("STAT #").Cursor(&r.cursor).Literal(" id=").Int32(&r.id) ...
// After a failed step every later step does nothing.
#ifndef PELICOR_PARSER_FIELD_SCANNER_H_
#define PELICOR_PARSER_FIELD_SCANNER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "parser/records.h"

namespace parser {

// White space as the C locale's isspace() sees it.
constexpr bool IsScanSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

class FieldScanner {
 public:
  explicit FieldScanner(std::string_view text) : text_(text) {}

  // Format text without conversions: blanks match white space runs, other characters exactly.
  FieldScanner& Literal(std::string_view format);
  FieldScanner& Int32(std::int32_t* value);  // %d
  FieldScanner& Int64(std::int64_t* value);  // %I64d
  // A cursor number: unsigned decimal up to 2^64-1 (larger values stay at 2^64-1); a sign
  // stops the scan, since cursor numbers and addresses are never negative.
  FieldScanner& Cursor(CursorNo* value);
  // %s: the view points into the scanned text.
  FieldScanner& Word(std::string_view* value);
  FieldScanner& Word(std::string* value);

  bool ok() const { return ok_; }
  // Where the next step would start reading.
  std::size_t position() const { return pos_; }

 private:
  void SkipSpace();
  // Reads [sign] digits; false (and the scan stopped) when no digit follows.
  bool Decimal(bool allow_sign, bool* negative, std::uint64_t* magnitude, bool* overflow);

  std::string_view text_;
  std::size_t pos_ = 0;
  bool ok_ = true;
};

}  // namespace parser

#endif  // PELICOR_PARSER_FIELD_SCANNER_H_
