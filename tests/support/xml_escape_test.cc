#include "support/xml_escape.h"

#include <gtest/gtest.h>

#include <string>

#include "support/xml_text.h"

namespace {

struct Case {
  const char* in;
  const char* out;
};

TEST(XmlEscape, ReplacesTheFourCharactersOnceEach) {
  const Case cases[] = {
      {"", ""},
      {"plain", "plain"},
      {"a&b", "a&amp;b"},
      {"&&", "&amp;&amp;"},
      {"&amp;", "&amp;amp;"},
      {"<x>", "&lt;x&gt;"},
      {"say \"hi\"", "say &quot;hi&quot;"},
      {"it's", "it's"},
      {"TABLE ACCESS FULL \"EMP\" <cr=8>", "TABLE ACCESS FULL &quot;EMP&quot; &lt;cr=8&gt;"},
  };
  for (const auto& c : cases) EXPECT_EQ(support::XmlEscaped(c.in), c.out) << c.in;
}

// Whatever the bytes, the result is UTF-8 of characters XML allows; valid UTF-8 stays as it is.
TEST(XmlEscape, MakesAnyBytesWellFormed) {
  const Case cases[] = {
      {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80", "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"tab\tlf\ncr\r", "tab\tlf\ncr\r"},
      // Windows-1252 bytes: e-acute, the euro sign, a right quote, an undefined 0x81
      {"caf\xE9", "caf\xC3\xA9"},
      {"\x80\x92\x81", "\xE2\x82\xAC\xE2\x80\x99\xC2\x81"},
      {"\xFF", "\xC3\xBF"},
      // controls XML 1.0 forbids
      {"a\x01\x1b"
       "b",
       "a\xEF\xBF\xBD\xEF\xBF\xBD"
       "b"},
      // sequences that are not UTF-8: each byte stands for itself
      {"\xC3", "\xC3\x83"},                                              // cut short
      {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                                  // overlong '/'
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},                  // a surrogate
      {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xE2\x82\xAC\xE2\x82\xAC"},  // above U+10FFFF
      {"\xE9<\"", "\xC3\xA9&lt;&quot;"},
      // the non-characters U+FFFE and U+FFFF
      {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
  };
  for (const auto& c : cases) EXPECT_EQ(support::XmlEscaped(c.in), c.out) << c.in;
  EXPECT_EQ(support::XmlEscaped(std::string("x\0y", 3)), "x\xEF\xBF\xBDy");
}

// Long texts are scanned in blocks: a byte that needs work is found wherever it stands. CDATA
// splits its end marker and keeps entities as they are.
TEST(XmlEscape, FindsWhatNeedsWorkAtEveryPositionOfALongText) {
  const struct {
    support::XmlPlace place;
    std::string in;
    std::string out;
  } cases[] = {
      {support::XmlPlace::kAttribute, "&", "&amp;"},
      {support::XmlPlace::kAttribute, "\"", "&quot;"},
      {support::XmlPlace::kAttribute, ">", "&gt;"},
      {support::XmlPlace::kAttribute, "\x1f", "\xEF\xBF\xBD"},
      {support::XmlPlace::kAttribute, "\n\t\r\x7f]", "\n\t\r\x7f]"},
      {support::XmlPlace::kCdata, "\xE9", "\xC3\xA9"},
      {support::XmlPlace::kCdata, "\xC3\xA9<&", "\xC3\xA9<&"},
      {support::XmlPlace::kCdata, std::string(1, '\0'), "\xEF\xBF\xBD"},
      {support::XmlPlace::kCdata, "]]>", "]]]]><![CDATA[>"},
      {support::XmlPlace::kCdata, "a < b & \"c\"", "a < b & \"c\""},
      {support::XmlPlace::kCdata, "]]]>", "]]]]]><![CDATA[>"},
      {support::XmlPlace::kCdata, "]] >]", "]] >]"},
      {support::XmlPlace::kCdata, "caf\xE9\x02]]>", "caf\xC3\xA9\xEF\xBF\xBD]]]]><![CDATA[>"},
  };
  for (const auto& c : cases) {
    for (std::size_t at = 0; at <= 40; ++at) {
      const std::string before(at, 'a');
      const std::string after(40 - at, 'b');
      std::string out;
      support::WriteXmlText(before + c.in + after, c.place,
                            [&out](std::string_view piece) { out.append(piece); });
      EXPECT_EQ(out, before + c.out + after) << at;
    }
  }
}

}  // namespace
