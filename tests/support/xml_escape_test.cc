#include "support/xml_escape.h"

#include <gtest/gtest.h>

namespace {

TEST(XmlEscape, ReplacesTheFourCharactersOnceEach) {
  const struct {
    const char* in;
    const char* out;
  } cases[] = {
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

}  // namespace
