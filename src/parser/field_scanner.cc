#include "parser/field_scanner.h"

#include <limits>

namespace parser {

void FieldScanner::LongDecimal(std::uint64_t* magnitude, Digits* digits) {
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  while (pos_ < text_.size() && IsDigit(text_[pos_])) {
    const auto digit = static_cast<std::uint64_t>(text_[pos_++] - '0');
    if (*magnitude > (kMax - digit) / 10) digits->overflow = true;
    if (!digits->overflow) *magnitude = *magnitude * 10 + digit;
  }
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
