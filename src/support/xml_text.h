// Text as every XML document of Pelicor (and its activity log) writes it, so that the document
// stays well-formed whatever bytes a trace or a server sent:
//   - valid UTF-8 is written unchanged (a clean trace gives the same bytes as ever);
//   - a byte that does not start a valid UTF-8 sequence is taken as the Windows-1252 character it
//     stands for and written in UTF-8 ("caf\xE9" -> "café"), as traces of databases with a
//     Western European character set hold such bytes;
//   - a control character that XML 1.0 forbids (below 0x20 except tab, LF and CR), and the
//     non-characters U+FFFE and U+FFFF, become U+FFFD;
//   - in an attribute '&', '<', '>' and '"' become entities (each '&' once, the apostrophe stays,
//     as our attributes are double-quoted); in a CDATA section a "]]>" is split across two
//     sections, so that the text reads back unchanged.
// Runs of bytes that need nothing are handed on in one piece.
#ifndef PELICOR_SUPPORT_XML_TEXT_H_
#define PELICOR_SUPPORT_XML_TEXT_H_

#include <array>
#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace support {

namespace xml_text {

enum ByteKind : unsigned char {
  kCopy = 0,     // written as it is
  kEntity = 1,   // '&', '<', '>', '"' in an attribute
  kControl = 2,  // forbidden below 0x20
  kHigh = 3,     // 0x80 and above: UTF-8, or a Windows-1252 byte
  kBracket = 4,  // ']' in a CDATA section: "]]>" may start here
};

using ByteTable = std::array<unsigned char, 256>;

constexpr ByteTable MakeTable(bool attribute) {
  ByteTable table{};
  for (std::size_t byte = 0; byte < 0x20; ++byte) table[byte] = kControl;
  table['\t'] = table['\n'] = table['\r'] = kCopy;
  for (std::size_t byte = 0x80; byte < 0x100; ++byte) table[byte] = kHigh;
  if (attribute) {
    table['&'] = table['<'] = table['>'] = table['"'] = kEntity;
  } else {
    table[']'] = kBracket;
  }
  return table;
}

inline constexpr ByteTable kAttributeTable = MakeTable(true);
inline constexpr ByteTable kCdataTable = MakeTable(false);

inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
inline constexpr std::string_view kCdataSplit = "]]><![CDATA[";

// The length (2 to 4) of the well-formed UTF-8 sequence that starts at text[at] (a byte of
// 0x80 or above), or 0 when the bytes there are not one.
std::size_t Utf8SequenceLength(std::string_view text, std::size_t at);

// True for the three bytes of U+FFFE and U+FFFF, characters XML does not allow.
inline bool IsNonCharacter(std::string_view sequence) {
  return sequence.size() == 3 && sequence[0] == '\xEF' && sequence[1] == '\xBF' &&
         (sequence[2] == '\xBE' || sequence[2] == '\xBF');
}

// The UTF-8 form of the Windows-1252 character that `byte` (0x80 to 0xFF) stands for; the five
// bytes that code page leaves undefined are taken as the C1 controls of the same value, as
// Windows itself converts them.
std::string_view Windows1252AsUtf8(unsigned char byte);

std::string_view EntityFor(char c);

// Sixteen bytes at a time where the processor has SSE2 (every x86-64): a block that holds no
// byte below 0x20 but tab, LF and CR, none of 0x80 and above and none of the place's own
// specials is copied as it stands. Returns the position of the first byte from `at` on that
// needs work, or where fewer than sixteen bytes are left (the caller takes those one by one).
inline std::size_t SkipPlainBlocks(const char* data, std::size_t at, std::size_t size,
                                   bool attribute) {
#ifdef __SSE2__
  const __m128i space = _mm_set1_epi8(0x20);
  const __m128i tab = _mm_set1_epi8('\t');
  const __m128i line_feed = _mm_set1_epi8('\n');
  const __m128i carriage_return = _mm_set1_epi8('\r');
  while (size - at >= 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + at));
    // Signed, bytes of 0x80 and above are negative: one compare finds them and the controls.
    __m128i special = _mm_cmplt_epi8(block, space);
    if (attribute) {
      special = _mm_or_si128(special,
                             _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('&')),
                                                       _mm_cmpeq_epi8(block, _mm_set1_epi8('<'))),
                                          _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('>')),
                                                       _mm_cmpeq_epi8(block, _mm_set1_epi8('"')))));
    } else {
      special = _mm_or_si128(special, _mm_cmpeq_epi8(block, _mm_set1_epi8(']')));
    }
    int mask = _mm_movemask_epi8(special);
    if (mask != 0) {
      // Only now the controls that are allowed: most blocks of SQL text hold no line end.
      const __m128i allowed = _mm_or_si128(
          _mm_cmpeq_epi8(block, tab),
          _mm_or_si128(_mm_cmpeq_epi8(block, line_feed), _mm_cmpeq_epi8(block, carriage_return)));
      mask &= ~_mm_movemask_epi8(allowed);
      if (mask != 0) {
        return at + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(mask)));
      }
    }
    at += 16;
  }
#else
  static_cast<void>(data);
  static_cast<void>(size);
  static_cast<void>(attribute);
#endif
  return at;
}

}  // namespace xml_text

enum class XmlPlace { kAttribute, kCdata };

// Hands `text`, made safe for `place`, to `emit` (called with std::string_view pieces, never
// empty ones).
template <typename Emit>
void WriteXmlText(std::string_view text, XmlPlace place, Emit&& emit) {
  using namespace xml_text;
  const ByteTable& table = place == XmlPlace::kAttribute ? kAttributeTable : kCdataTable;
  const std::size_t size = text.size();
  std::size_t run = 0;  // start of the bytes not yet handed on
  std::size_t at = 0;
  const bool attribute = place == XmlPlace::kAttribute;
  while (at < size) {
    at = SkipPlainBlocks(text.data(), at, size, attribute);
    while (at < size && table[static_cast<unsigned char>(text[at])] == kCopy) ++at;
    if (at == size) break;
    const unsigned char byte = static_cast<unsigned char>(text[at]);
    const unsigned char kind = table[byte];
    std::string_view replacement;
    std::size_t length = 1;
    if (kind == kHigh) {
      length = Utf8SequenceLength(text, at);
      if (length != 0 && !IsNonCharacter(text.substr(at, length))) {
        at += length;
        continue;
      }
      replacement = length != 0 ? kReplacement : Windows1252AsUtf8(byte);
      if (length == 0) length = 1;
    } else if (kind == kBracket) {
      if (text.compare(at, 3, "]]>") != 0) {
        ++at;
        continue;
      }
      // "a]]>b" -> "a]]" "]]><![CDATA[" ">b"
      emit(text.substr(run, at + 2 - run));
      emit(kCdataSplit);
      run = at += 2;
      continue;
    } else {
      replacement = kind == kEntity ? EntityFor(text[at]) : kReplacement;
    }
    if (run < at) emit(text.substr(run, at - run));
    emit(replacement);
    run = at += length;
  }
  if (run < size) emit(text.substr(run));
}

}  // namespace support

#endif  // PELICOR_SUPPORT_XML_TEXT_H_
