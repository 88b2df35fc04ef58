// Finds an end marker in data that arrives in pieces. The matcher remembers how many bytes
// of the marker ended the data it was fed, so a marker split across two reads ("\r" now,
// "\n" in the next read) is still found. Each read owns its matcher: nothing is shared.
#ifndef PELICOR_TRANSPORT_TCP_MARKER_MATCHER_H_
#define PELICOR_TRANSPORT_TCP_MARKER_MATCHER_H_

#include <cstddef>
#include <string_view>
#include <vector>

namespace transport {

class MarkerMatcher {
 public:
  MarkerMatcher(std::string_view marker, bool case_sensitive);

  // Looks for the marker in `data` following what was fed so far, without feeding it: the
  // offset just past the marker's end, or npos. The marker may have begun in fed data.
  std::size_t Find(const char* data, std::size_t size) const;
  // Takes `data` as consumed: what ends it counts towards the next Find.
  void Feed(const char* data, std::size_t size);

  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

 private:
  // The matched length after `state` matched bytes and the byte `c` (Knuth-Morris-Pratt).
  std::size_t Step(std::size_t state, char c) const;
  bool Same(char a, char b) const;

  std::string_view marker_;
  bool case_sensitive_;
  std::vector<std::size_t> fallback_;  // longest proper border of marker[0..i]
  std::size_t state_ = 0;              // marker bytes matched at the end of the fed data
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_MARKER_MATCHER_H_
