#include "support/os/wildcard.h"

#include <cstddef>

namespace os {

namespace {
char FoldAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
}  // namespace

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  // Greedy scan that remembers the last '*': on a mismatch the star takes one more character.
  // Linear in practice, never exponential, whatever the number of stars.
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = std::string_view::npos;
  std::size_t star_name = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      star_name = n;
    } else if (p < pattern.size() &&
               (pattern[p] == '?' || FoldAscii(pattern[p]) == FoldAscii(name[n]))) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++star_name;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace os
