#include "parser/field_scanner.h"

#include <limits>

namespace parser {

namespace {

constexpr std::uint64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

// The value strtoll gives: out-of-range values stick to the nearest limit.
std::int64_t Clamp64(bool negative, std::uint64_t magnitude, bool overflow) {
  if (negative) {
    if (overflow || magnitude > kInt64Max + 1) return std::numeric_limits<std::int64_t>::min();
    return magnitude == kInt64Max + 1 ? std::numeric_limits<std::int64_t>::min()
                                      : -static_cast<std::int64_t>(magnitude);
  }
  if (overflow || magnitude > kInt64Max) return std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(magnitude);
}

}  // namespace

void FieldScanner::SkipSpace() {
  while (pos_ < text_.size() && IsScanSpace(text_[pos_])) ++pos_;
}

FieldScanner& FieldScanner::Literal(std::string_view format) {
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

bool FieldScanner::Decimal(bool allow_sign, bool* negative, std::uint64_t* magnitude,
                           bool* overflow) {
  SkipSpace();
  *negative = false;
  *magnitude = 0;
  *overflow = false;
  if (allow_sign && pos_ < text_.size() && (text_[pos_] == '-' || text_[pos_] == '+')) {
    *negative = text_[pos_] == '-';
    ++pos_;
  }
  const std::size_t first_digit = pos_;
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  while (pos_ < text_.size() && text_[pos_] >= '0' && text_[pos_] <= '9') {
    const auto digit = static_cast<std::uint64_t>(text_[pos_] - '0');
    if (*magnitude > (kMax - digit) / 10) *overflow = true;
    if (!*overflow) *magnitude = *magnitude * 10 + digit;
    ++pos_;
  }
  ok_ = pos_ > first_digit;
  return ok_;
}

FieldScanner& FieldScanner::Int64(std::int64_t* value) {
  bool negative = false;
  bool overflow = false;
  std::uint64_t magnitude = 0;
  if (ok_ && Decimal(true, &negative, &magnitude, &overflow)) {
    *value = Clamp64(negative, magnitude, overflow);
  }
  return *this;
}

FieldScanner& FieldScanner::Int32(std::int32_t* value) {
  std::int64_t wide = 0;
  if (ok_ && Int64(&wide).ok_) {
    // The C library converts to long first and then stores the low 32 bits.
    *value = static_cast<std::int32_t>(static_cast<std::uint32_t>(wide));
  }
  return *this;
}

FieldScanner& FieldScanner::Cursor(CursorNo* value) {
  bool negative = false;
  bool overflow = false;
  std::uint64_t magnitude = 0;
  if (ok_ && Decimal(false, &negative, &magnitude, &overflow)) {
    *value = overflow ? std::numeric_limits<CursorNo>::max() : magnitude;
  }
  return *this;
}

FieldScanner& FieldScanner::Word(std::string_view* value) {
  if (!ok_) return *this;
  SkipSpace();
  const std::size_t start = pos_;
  while (pos_ < text_.size() && !IsScanSpace(text_[pos_])) ++pos_;
  ok_ = pos_ > start;
  if (ok_) *value = text_.substr(start, pos_ - start);
  return *this;
}

FieldScanner& FieldScanner::Word(std::string* value) {
  std::string_view word;
  if (Word(&word).ok_) value->assign(word.data(), word.size());
  return *this;
}

}  // namespace parser
