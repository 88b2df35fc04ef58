// A quick first reading of the lines the server writes millions of times (calls and waits), for
// the layout it writes them in: literals exactly as they stand, numbers as plain digits with no
// blank or sign in front. On such text every scanf-like rule of field_scanner.h gives the plain
// value, so a line read this way to its end gets exactly the record the general scanner would
// give. Any other text (a sign, a blank, a number too long to be sure of, a missing field) makes
// a step fail, and the line is then read by the general scanner from its start.
//
// Where eight bytes of the line are left, a step looks at them at once: a literal is one masked
// compare, digits are counted and converted eight at a time with a few word operations, and a
// character is searched for eight at a time, instead of a loop over the characters with a branch
// on each (trace lines are made of short literals and numbers, a 19c cursor number and tim have
// fifteen and sixteen digits).
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
      std::memcpy(&word, at_, 8);
      // Built from the characters rather than copied, so that it folds into a constant.
      std::uint64_t expected = 0;
      for (std::size_t i = 0; i < kSize; ++i) {
        expected |= std::uint64_t{static_cast<unsigned char>(literal[i])} << (8 * i);
      }
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
    const char* const equals = Find('=', at_);
    if (equals == end_ || equals == at_) return false;
    at_ = equals;
    return true;
  }
  // The first `c` at or after `from`, or the end of the text.
  PELICOR_STRICT_INLINE const char* Find(char c, const char* from) const {
#if PELICOR_STRICT_WORDS
    const std::uint64_t pattern = kOnes * static_cast<unsigned char>(c);
    for (; end_ - from >= 8; from += 8) {
      std::uint64_t word = 0;
      std::memcpy(&word, from, 8);
      const std::uint64_t x = word ^ pattern;  // a zero byte where c stands
      // Flags the first zero byte exactly (a false flag can only follow a true one).
      const std::uint64_t zeros = (x - kOnes) & ~x & kHighBits;
      if (zeros != 0) return from + (CountTrailingZeros(zeros) >> 3);
    }
#endif
    while (from < end_ && *from != c) ++from;
    return from;
  }
  const char* end() const {
    return end_;
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
  static constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
  static constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;

  static PELICOR_STRICT_INLINE unsigned CountTrailingZeros(std::uint64_t word) {
#if defined(__GNUC__)
    return static_cast<unsigned>(__builtin_ctzll(word));
#else
    unsigned count = 0;
    for (; (word & 1) == 0; word >>= 1) ++count;
    return count;
#endif
  }

  // One to `max_digits` digits, and no digit behind them.
  PELICOR_STRICT_INLINE bool Digits(std::size_t max_digits, std::uint64_t* value) {
    std::uint64_t number = 0;
    std::size_t count = 0;
    const char* at = at_;
#if PELICOR_STRICT_WORDS
    // Eight characters at a time: the digits in front are counted and converted at once.
    static constexpr std::uint64_t kPowersOfTen[9] = {1,      10,      100,      1000,     10000,
                                                      100000, 1000000, 10000000, 100000000};
    while (end_ - at >= 8) {
      std::uint64_t word = 0;
      std::memcpy(&word, at, 8);
      const std::uint64_t values = word ^ (kOnes * '0');  // a digit becomes 0 to 9
      // The high bit of each byte that is no digit (any value of 10 or more).
      const std::uint64_t others =
          (((values & ~kHighBits) + kOnes * (0x80 - 10)) | values) & kHighBits;
      const unsigned digits = others == 0 ? 8 : CountTrailingZeros(others) >> 3;
      if (digits == 0) break;
      number = number * kPowersOfTen[digits] + EightDigits(values << (8 * (8 - digits)));
      count += digits;
      at += digits;
      if (count > max_digits) return false;
      if (digits < 8) {
        at_ = at;
        *value = number;
        return true;
      }
    }
#endif
    for (; at < end_ && count <= max_digits; ++at, ++count) {
      const auto digit = static_cast<unsigned char>(*at - '0');
      if (digit > 9) break;
      number = number * 10 + digit;
    }
    if (count == 0 || count > max_digits) return false;
    at_ = at;
    *value = number;
    return true;
  }

  // The number that eight digit values (0 to 9, the first in the lowest byte) spell; leading
  // zero bytes stand for leading zeros.
  static PELICOR_STRICT_INLINE std::uint64_t EightDigits(std::uint64_t values) {
    constexpr std::uint64_t kLowOfPairs = 0x000000FF000000FFULL;
    values = values * 10 + (values >> 8);  // each byte pair: the two-digit number
    return (((values & kLowOfPairs) * (100 + (1000000ULL << 32))) +
            (((values >> 16) & kLowOfPairs) * (1 + (10000ULL << 32)))) >>
           32;
  }

  const char* begin_;
  const char* at_;
  const char* end_;
};

}  // namespace parser

#endif  // PELICOR_PARSER_STRICT_FIELDS_H_
