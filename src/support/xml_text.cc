#include "support/xml_text.h"

#include <cstdint>

namespace support {
namespace xml_text {

namespace {

// Code points of Windows-1252's 0x80 to 0x9F; from 0xA0 on it is Latin-1.
constexpr std::array<std::uint16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

struct Encoded {
  std::array<char, 3> bytes{};
  std::size_t length = 0;
};

constexpr Encoded Utf8Of(std::uint32_t code_point) {
  Encoded out;
  if (code_point < 0x800) {
    out.bytes[0] = static_cast<char>(0xC0 | (code_point >> 6));
    out.bytes[1] = static_cast<char>(0x80 | (code_point & 0x3F));
    out.length = 2;
  } else {
    out.bytes[0] = static_cast<char>(0xE0 | (code_point >> 12));
    out.bytes[1] = static_cast<char>(0x80 | ((code_point >> 6) & 0x3F));
    out.bytes[2] = static_cast<char>(0x80 | (code_point & 0x3F));
    out.length = 3;
  }
  return out;
}

constexpr std::array<Encoded, 128> MakeWindows1252Table() {
  std::array<Encoded, 128> table{};
  for (std::uint32_t byte = 0x80; byte < 0x100; ++byte) {
    const std::uint32_t code_point = byte < 0xA0 ? kWindows1252High[byte - 0x80] : byte;
    table[byte - 0x80] = Utf8Of(code_point);
  }
  return table;
}

constexpr std::array<Encoded, 128> kWindows1252 = MakeWindows1252Table();

bool InRange(std::string_view text, std::size_t at, unsigned char low, unsigned char high) {
  if (at >= text.size()) return false;
  const auto byte = static_cast<unsigned char>(text[at]);
  return byte >= low && byte <= high;
}

}  // namespace

// The well-formed sequences of the Unicode standard (its table 3-7): no overlong forms, no
// surrogates, nothing above U+10FFFF.
std::size_t Utf8SequenceLength(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (!InRange(text, at + 1, low, high)) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!InRange(text, at + i, 0x80, 0xBF)) return 0;
  }
  return length;
}

std::string_view Windows1252AsUtf8(unsigned char byte) {
  const Encoded& encoded = kWindows1252[static_cast<std::size_t>(byte & 0x7F)];
  return {encoded.bytes.data(), encoded.length};
}

std::string_view EntityFor(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    default:
      return "&quot;";
  }
}

}  // namespace xml_text
}  // namespace support
