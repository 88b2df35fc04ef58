#include "support/os/wildcard.h"

#include <gtest/gtest.h>

namespace {

TEST(WildcardMatch, FollowsTheWindowsSearchRules) {
  const struct {
    const char* pattern;
    const char* name;
    bool match;
  } cases[] = {
      {"*.trc", "ora_1.trc", true},
      {"*.trc", "ORA_1.TRC", true},
      {"*.trc", "ora_1.trc.bak", false},
      {"*.trc", ".trc", true},
      {"*.trc", "trc", false},
      {"*12*.trc", "ora_123.trc", true},
      {"*12*.trc", "ora_1_2.trc", false},
      {"*12*.trc", "12.trc", true},
      {"ora_?.trc", "ora_1.trc", true},
      {"ora_?.trc", "ora_12.trc", false},
      {"ora_?.trc", "ora_.trc", false},
      {"*", "", true},
      {"", "", true},
      {"", "a", false},
      {"**a*b*", "xxaxxbxx", true},
      {"*a*a*a*a*b", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false},
      {"\xc3\xa4*.trc", "\xc3\xa4 x.trc", true},
      {"\xc3\xa4*.trc", "\xc3\x84 x.trc", false},
      {"my trace*", "MY TRACE 1.trc", true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(os::WildcardMatch(c.pattern, c.name), c.match) << c.pattern << " vs " << c.name;
  }
}

}  // namespace
