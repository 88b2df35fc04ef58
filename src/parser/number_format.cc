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

// std::to_chars in fixed form with a precision is specified to give printf's "%.*f" text in the C
// locale, correctly rounded (ties to even on the exact binary value, as glibc's printf), "inf"
// and "nan" included.
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
