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
#include <cstring>
#include <string>
#include <string_view>

#include "parser/records.h"

namespace parser {

// White space as the C locale's isspace() sees it.
constexpr bool IsScanSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

class FieldScanner {
 public:
  explicit FieldScanner(std::string_view text) : text_(text) {}

  // Format text without conversions: blanks match white space runs, other characters exactly.
  FieldScanner& Literal(std::string_view format) {
    // Most lines hold the literal as it stands: one comparison then does. A blank of the format
    // that met exactly one blank has matched the whole run, unless it ends the format.
    if (ok_ && !format.empty() && format.back() != ' ' && text_.size() - pos_ >= format.size() &&
        std::memcmp(text_.data() + pos_, format.data(), format.size()) == 0) {
      pos_ += format.size();
      return *this;
    }
    for (std::size_t i = 0; ok_ && i < format.size(); ++i) {
      if (format[i] == ' ') {
        SkipSpace();
      } else if (pos_ < text_.size() && text_[pos_] == format[i]) {
        ++pos_;
      } else {
        ok_ = false;
      }
    }
    return *this;
  }
  // %d
  FieldScanner& Int32(std::int32_t* value) {
    std::int64_t wide = 0;
    // The C library converts to long first and then stores the low 32 bits.
    if (Int64(&wide).ok_) *value = static_cast<std::int32_t>(static_cast<std::uint32_t>(wide));
    return *this;
  }
  // %I64d
  FieldScanner& Int64(std::int64_t* value) {
    Digits digits;
    if (ok_ && Decimal(true, &digits)) *value = Clamp64(digits);
    return *this;
  }
  // A cursor number: unsigned decimal up to 2^64-1 (larger values stay at 2^64-1), since
  // 11.2.0.2 and later write addresses ("#140736410372616"). A sign is taken as %d takes it:
  // "#+1" reads 1, and "#-1" the 32-bit value %d gives, widened with its sign; *negative
  // (when given) then says that the number is below 0, so that it prints as the line had it.
  FieldScanner& Cursor(CursorNo* value, bool* negative = nullptr) {
    Digits digits;
    if (!ok_ || !Decimal(true, &digits)) return *this;
    bool below_zero = false;
    if (!digits.negative) {
      *value = digits.overflow ? ~CursorNo{0} : digits.magnitude;
    } else {
      const auto low = static_cast<std::int32_t>(
          static_cast<std::uint32_t>(static_cast<std::uint64_t>(Clamp64(digits))));
      *value = static_cast<CursorNo>(static_cast<std::int64_t>(low));
      below_zero = low < 0;
    }
    if (negative != nullptr) *negative = below_zero;
    return *this;
  }
  // %s: the view points into the scanned text.
  FieldScanner& Word(std::string_view* value);
  FieldScanner& Word(std::string* value);

  // True when the scan is still going and the text goes on with `literal`, character for
  // character; nothing is consumed. For fields that only some releases write.
  bool LooksAt(std::string_view literal) const {
    if (!ok_ || text_.size() - pos_ < literal.size()) return false;
    for (std::size_t i = 0; i < literal.size(); ++i) {
      if (text_[pos_ + i] != literal[i]) return false;
    }
    return true;
  }

  bool ok() const { return ok_; }
  // Where the next step would start reading.
  std::size_t position() const { return pos_; }

 private:
  struct Digits {
    bool negative = false;
    bool overflow = false;  // more than 2^64-1
    std::uint64_t magnitude = 0;
  };

  void SkipSpace() {
    while (pos_ < text_.size() && IsScanSpace(text_[pos_])) ++pos_;
  }
  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  // Reads [sign] digits; false (and the scan stopped) when no digit follows.
  bool Decimal(bool allow_sign, Digits* digits) {
    SkipSpace();
    if (allow_sign && pos_ < text_.size() && (text_[pos_] == '-' || text_[pos_] == '+')) {
      digits->negative = text_[pos_] == '-';
      ++pos_;
    }
    const std::size_t first = pos_;
    // Nineteen digits always fit in 64 bits; only longer numbers need the overflow check.
    const std::size_t fast_end = text_.size() - pos_ > 19 ? pos_ + 19 : text_.size();
    std::uint64_t magnitude = 0;
    while (pos_ < fast_end && IsDigit(text_[pos_])) {
      magnitude = magnitude * 10 + static_cast<std::uint64_t>(text_[pos_++] - '0');
    }
    if (pos_ == fast_end && pos_ < text_.size() && IsDigit(text_[pos_]))
      LongDecimal(&magnitude, digits);
    digits->magnitude = magnitude;
    ok_ = pos_ > first;
    return ok_;
  }
  void LongDecimal(std::uint64_t* magnitude, Digits* digits);
  // The value strtoll gives: out-of-range values stick to the nearest limit.
  static std::int64_t Clamp64(const Digits& digits) {
    constexpr auto kMax = static_cast<std::uint64_t>(INT64_MAX);
    if (digits.overflow || digits.magnitude > kMax) return digits.negative ? INT64_MIN : INT64_MAX;
    const auto value = static_cast<std::int64_t>(digits.magnitude);
    return digits.negative ? -value : value;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  bool ok_ = true;
};

}  // namespace parser

#endif  // PELICOR_PARSER_FIELD_SCANNER_H_
