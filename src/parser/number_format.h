// Numbers as the C library's printf writes them for the few conversions our documents use,
// without going through printf: "%d" and "%I64d" (decimal, a '-' for negatives), "%.2f" (fixed,
// two decimals, halves rounded on the exact binary value as printf does, so 0.125 gives "0.12"
// and 2.675 gives "2.67"), and the report's right-aligned widths ("%6I64d", "%10.2lf").
//
// Each function writes into a caller's buffer of at least the given size and returns the end of
// what it wrote; nothing is terminated with a zero.
#ifndef PELICOR_PARSER_NUMBER_FORMAT_H_
#define PELICOR_PARSER_NUMBER_FORMAT_H_

#include <cstddef>
#include <cstdint>

namespace parser {

// "-9223372036854775808" and "18446744073709551615" both fit.
inline constexpr std::size_t kMaxDecimalChars = 20;
// "-" and the 309 integer digits of the largest double, ".", two decimals; also "-nan", "-inf".
inline constexpr std::size_t kMaxFixed2Chars = 1 + 309 + 1 + 2;

// %d / %I64d.
char* FormatDecimal(char* out, std::int64_t value);
// Unsigned decimal, for cursor numbers, which are addresses on 11.2.0.2 and later.
char* FormatDecimal(char* out, std::uint64_t value);
// %.2f / %.2lf.
char* FormatFixed2(char* out, double value);

// Moves [begin, end) to the right end of a field `width` wide that starts at `begin`, filling in
// blanks on the left, as printf's width does; a longer text is kept whole. `begin` must have room
// for `width` characters. Returns the new end.
char* AlignRight(char* begin, char* end, std::size_t width);

}  // namespace parser

#endif  // PELICOR_PARSER_NUMBER_FORMAT_H_
