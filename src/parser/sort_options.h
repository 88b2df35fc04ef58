// The caller's sort options: which call kinds to add into the sort totals and which counter to
// sort on (0 count, 1 cpu, 2 elapsed, 3 disk, 4 query, 5 current, 6 misses, 7 rows). Any key is
// stored; the sort step ignores keys above 7.
#ifndef PELICOR_PARSER_SORT_OPTIONS_H_
#define PELICOR_PARSER_SORT_OPTIONS_H_

#include <cstdint>

namespace parser {

class SortOptions {
 public:
  SortOptions() = default;
  SortOptions(bool prs, bool exe, bool fch, std::uint16_t key)
      : prs_(prs), exe_(exe), fch_(fch), key_(key) {}

  void Set(bool prs, bool exe, bool fch, std::uint16_t key) {
    prs_ = prs;
    exe_ = exe;
    fch_ = fch;
    key_ = key;
  }
  std::uint16_t Key() const { return key_; }
  bool Prs() const { return prs_; }
  bool Exe() const { return exe_; }
  bool Fch() const { return fch_; }

 private:
  bool prs_ = false;
  bool exe_ = false;
  bool fch_ = false;
  std::uint16_t key_ = 0;
};

}  // namespace parser

#endif  // PELICOR_PARSER_SORT_OPTIONS_H_
