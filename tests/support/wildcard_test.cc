#include "support/os/wildcard.h"

#include <gtest/gtest.h>

namespace {

TEST(WildcardMatch, FollowsTheWindowsSearchRules) {
  // pattern, name, matches
  const struct {
    const char *p, *n;
    bool match;
  } cases[] = {
      // clang-format off
      {"*.trc", "ora_1.trc", true}, {"*.trc", "ORA_1.TRC", true}, {"*.trc", "a.trc.bak", false},
      {"*.trc", ".trc", true}, {"*12*.trc", "ora_123.trc", true}, {"*12*.trc", "a_1_2.trc", false},
      {"ora_?.trc", "ora_1.trc", true}, {"ora_?.trc", "ora_12.trc", false},
      {"ora_?.trc", "ora_.trc", false}, {"*", "", true}, {"", "", true},
      {"**a*b*", "xxaxxbxx", true}, {"*a*a*a*a*b", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false},
      {"\xc3\xa4*.trc", "\xc3\xa4 x.trc", true}, {"\xc3\xa4*.trc", "\xc3\x84 x.trc", false},
      // clang-format on
  };
  for (const auto& c : cases)
    EXPECT_EQ(os::WildcardMatch(c.p, c.n), c.match) << c.p << " ~ " << c.n;
}

}  // namespace
