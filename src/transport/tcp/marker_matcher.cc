#include "transport/tcp/marker_matcher.h"

#include <cctype>

namespace transport {

MarkerMatcher::MarkerMatcher(std::string_view marker, bool case_sensitive)
    : marker_(marker), case_sensitive_(case_sensitive), fallback_(marker.size(), 0) {
  std::size_t border = 0;
  for (std::size_t i = 1; i < marker_.size(); ++i) {
    while (border > 0 && !Same(marker_[i], marker_[border])) border = fallback_[border - 1];
    if (Same(marker_[i], marker_[border])) ++border;
    fallback_[i] = border;
  }
}

bool MarkerMatcher::Same(char a, char b) const {
  if (case_sensitive_) return a == b;
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

std::size_t MarkerMatcher::Step(std::size_t state, char c) const {
  if (state == marker_.size()) state = fallback_[state - 1];
  while (state > 0 && !Same(c, marker_[state])) state = fallback_[state - 1];
  return Same(c, marker_[state]) ? state + 1 : 0;
}

std::size_t MarkerMatcher::Find(const char* data, std::size_t size) const {
  if (marker_.empty()) return npos;
  std::size_t state = state_;
  for (std::size_t i = 0; i < size; ++i) {
    state = Step(state, data[i]);
    if (state == marker_.size()) return i + 1;
  }
  return npos;
}

void MarkerMatcher::Feed(const char* data, std::size_t size) {
  if (marker_.empty()) return;
  for (std::size_t i = 0; i < size; ++i) state_ = Step(state_, data[i]);
}

}  // namespace transport
