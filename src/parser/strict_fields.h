// A quick first reading of the lines the server writes millions of times (calls and waits), for
// the layout it writes them in: literals exactly as they stand, numbers as plain digits with no
// blank or sign in front. On such text every scanf-like rule of field_scanner.h gives the plain
// value, so a line read this way to its end gets exactly the record the general scanner would
// give. Any other text (a sign, a blank, a number too long to be sure of, a missing field) makes
// a step fail, and the line is then read by the general scanner from its start.
//
// Where eight bytes of the line are left, a step looks at them at once: a literal is one masked
// compare, and a run of up to eight digits is found and converted with a few word operations
// instead of a loop over its characters (trace lines are made of short literals and numbers).
#ifndef PELICOR_PARSER_STRICT_FIELDS_H_
#define PELICOR_PARSER_STRICT_FIELDS_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "parser/records.h"

#if defined(__GNUC__)
#define PELICOR_STRICT_INLINE inline __attribute__((always_inline))
#else
#define PELICOR_STRICT_INLINE inline
#endif

// The word steps read the first character in the lowest byte.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define PELICOR_STRICT_WORDS 1
#else
#define PELICOR_STRICT_WORDS 0
#endif

namespace parser {

class StrictFields {
 public:
  explicit StrictFields(std::string_view text)
      : begin_(text.data()), at_(text.data()), end_(text.data() + text.size()) {}

  template <std::size_t N>
  PELICOR_STRICT_INLINE bool Literal(const char (&literal)[N]) {
    constexpr std::size_t kSize = N - 1;
    static_assert(kSize > 0 && kSize <= 8, "a literal of one to eight characters");
#if PELICOR_STRICT_WORDS
    if (end_ - at_ >= 8) {
      std::uint64_t word = 0;
      std::uint64_t expected = 0;
      std::memcpy(&word, at_, 8);
      std::memcpy(&expected, literal, kSize);
      constexpr std::uint64_t kMask =
          kSize == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * kSize)) - 1;
      if ((word & kMask) != expected) return false;
      at_ += kSize;
      return true;
    }
#endif
    return Literal(std::string_view(literal, kSize));
  }
  bool Literal(std::string_view literal) {
    if (static_cast<std::size_t>(end_ - at_) < literal.size() ||
        std::memcmp(at_, literal.data(), literal.size()) != 0) {
      return false;
    }
    at_ += literal.size();
    return true;
  }
  // Eighteen digits always fit: the value is what %I64d reads.
  PELICOR_STRICT_INLINE bool Int64(std::int64_t* value) {
    std::uint64_t digits = 0;
    if (!Digits(18, &digits)) return false;
    *value = static_cast<std::int64_t>(digits);
    return true;
  }
  // %d keeps the low 32 bits of what it reads.
  PELICOR_STRICT_INLINE bool Int32(std::int32_t* value) {
    std::uint64_t digits = 0;
    if (!Digits(18, &digits)) return false;
    *value = static_cast<std::int32_t>(static_cast<std::uint32_t>(digits));
    return true;
  }
  // Nineteen digits still fit in an unsigned 64-bit cursor number.
  PELICOR_STRICT_INLINE bool Cursor(CursorNo* value) {
    return Digits(19, value);
  }
  // A number that is read over, not kept: an optional minus, then digits.
  bool SkipNumber() {
    if (at_ < end_ && *at_ == '-') ++at_;
    std::uint64_t ignored = 0;
    return Digits(18, &ignored);
  }
  // At least one character up to the next '=' (which is not consumed).
  bool SkipName() {
    const void* equals = std::memchr(at_, '=', static_cast<std::size_t>(end_ - at_));
    if (equals == nullptr || equals == at_) return false;
    at_ = static_cast<const char*>(equals);
    return true;
  }
  // Nothing but white space is left.
  bool AtBlankEnd() const {
    for (const char* c = at_; c < end_; ++c) {
      if (*c != ' ' && (*c < '\t' || *c > '\r')) return false;
    }
    return true;
  }
  std::size_t position() const {
    return static_cast<std::size_t>(at_ - begin_);
  }

 private:
  // One to `max_digits` digits, and no digit behind them.
  PELICOR_STRICT_INLINE bool Digits(std::size_t max_digits, std::uint64_t* value) {
    const char* at = at_;
    const char* const stop =
        static_cast<std::size_t>(end_ - at) > max_digits ? at + max_digits + 1 : end_;
    std::uint64_t number = 0;
    for (; at < stop; ++at) {
      const auto digit = static_cast<unsigned char>(*at - '0');
      if (digit > 9) break;
      number = number * 10 + digit;
    }
    if (at == at_ || at == at_ + max_digits + 1) return false;
    at_ = at;
    *value = number;
    return true;
  }

  const char* begin_;
  const char* at_;
  const char* end_;
};

}  // namespace parser

#endif  // PELICOR_PARSER_STRICT_FIELDS_H_
