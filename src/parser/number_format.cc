#include "parser/number_format.h"

#include <charconv>
#include <cstring>

namespace parser {

char* FormatDecimal(char* out, std::int64_t value) {
  return std::to_chars(out, out + kMaxDecimalChars, value).ptr;
}

char* FormatDecimal(char* out, std::uint64_t value) {
  return std::to_chars(out, out + kMaxDecimalChars, value).ptr;
}

// The C++ standard makes std::to_chars in fixed form with a precision write what printf's "%.*f"
// writes in the C locale: correctly rounded on the exact binary value (a true tie goes to even,
// as in glibc's printf), "inf" and "nan" included.
char* FormatFixed2(char* out, double value) {
  return std::to_chars(out, out + kMaxFixed2Chars, value, std::chars_format::fixed, 2).ptr;
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
