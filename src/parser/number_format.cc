#include "parser/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace parser {

char* FormatDecimal(char* out, std::int64_t value) {
  return std::to_chars(out, out + kMaxDecimalChars, value).ptr;
}

char* FormatDecimal(char* out, std::uint64_t value) {
  return std::to_chars(out, out + kMaxDecimalChars, value).ptr;
}

namespace {

// The C++ standard makes std::to_chars in fixed form with a precision write what printf's "%.*f"
// writes in the C locale: correctly rounded on the exact binary value (a true tie goes to even,
// as in glibc's printf), "inf" and "nan" included.
char* FormatFixed2Exactly(char* out, double value) {
  return std::to_chars(out, out + kMaxFixed2Chars, value, std::chars_format::fixed, 2).ptr;
}

// Scaled by 100, a value below 2^40 is off its exact product by at most 2^-13, so the side of
// the half that its fraction falls on is the exact product's unless it lies within the margin
// below; such near-ties (1.005, 2.675) and every larger, infinite or NaN value take the exact
// path. This is most of the time of writing figures otherwise.
constexpr double kFastScaledLimit = 1099511627776.0;  // 2^40
constexpr double kTieMargin = 1.0 / 1024;

}  // namespace

char* FormatFixed2(char* out, double value) {
  const double scaled = std::fabs(value) * 100.0;
  if (!(scaled < kFastScaledLimit)) return FormatFixed2Exactly(out, value);
  const double whole = std::floor(scaled);
  const double fraction = scaled - whole;  // exact below 2^52
  if (std::fabs(fraction - 0.5) < kTieMargin) return FormatFixed2Exactly(out, value);
  const std::uint64_t hundredths = static_cast<std::uint64_t>(whole) + (fraction > 0.5 ? 1 : 0);
  if (std::signbit(value)) *out++ = '-';  // "-0.00" for -0.001 and -0.0, as printf writes
  out = FormatDecimal(out, hundredths / 100);
  *out++ = '.';
  *out++ = static_cast<char>('0' + hundredths / 10 % 10);
  *out++ = static_cast<char>('0' + hundredths % 10);
  return out;
}

char* AlignRight(char* begin, char* end, std::size_t width) {
  const auto length = static_cast<std::size_t>(end - begin);
  if (length >= width) return end;
  const std::size_t pad = width - length;
  std::memmove(begin + pad, begin, length);
  std::memset(begin, ' ', pad);
  return begin + width;
}

}  // namespace parser
