#include "report/html_text.h"

#include <cstdint>

namespace report {

namespace {

// Windows-1252 at 0x80..0x9F; 0 where the code page defines no character.
constexpr char32_t kCp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string* out, char32_t c) {
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// The length of the valid UTF-8 sequence of two or more bytes at text[at], or 0.
std::size_t Utf8Length(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
  };
  const unsigned lead = byte(0);
  std::size_t length = 0;
  unsigned low = 0x80, high = 0xBF;  // the range of the second byte
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;   // no overlong forms
    if (lead == 0xED) high = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
  } else {
    return 0;
  }
  if (byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

const char* Entity(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return nullptr;
  }
}

}  // namespace

void AppendHtmlText(std::string* out, std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (c < 0x80) {
      if (const char* entity = Entity(static_cast<char>(c))) {
        out->append(entity);
      } else if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') {
        AppendUtf8(out, kReplacement);
      } else if (c == 0x7F) {
        AppendUtf8(out, kReplacement);
      } else {
        out->push_back(static_cast<char>(c));
      }
      ++at;
      continue;
    }
    const std::size_t length = Utf8Length(text, at);
    if (length > 0) {
      out->append(text.substr(at, length));
      at += length;
      continue;
    }
    const char32_t windows = c >= 0xA0 ? char32_t{c} : kCp1252High[c - 0x80];
    AppendUtf8(out, windows == 0 ? kReplacement : windows);
    ++at;
  }
}

std::string HtmlText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  AppendHtmlText(&out, text);
  return out;
}

}  // namespace report
