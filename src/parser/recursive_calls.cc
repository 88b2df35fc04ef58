#include "parser/recursive_calls.h"

namespace parser {

namespace {

// Wrapping arithmetic: absurd figures in a damaged trace must not trap.
std::int64_t Minus(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

std::int64_t Plus(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

template <typename Field>
void TakeOff(Field* own, std::int64_t children) {
  if (*own >= 0) *own = static_cast<Field>(Minus(*own, children));
}

void PassOn(std::int64_t* waiting, std::int64_t value) {
  if (value >= 0) *waiting = Plus(*waiting, value);
}

}  // namespace

CallRecord RecursiveCalls::OwnFigures(const CallRecord& call) {
  if (call.dep < 0 || call.dep > kMaxDepth) return call;
  const auto depth = static_cast<std::size_t>(call.dep);
  const Figures children = waiting_[depth + 1];
  // Calls deeper than the children whose own parent never showed are dropped with them.
  for (std::size_t d = depth + 1; d < used_; ++d) waiting_[d] = Figures{};
  used_ = depth + 1;

  CallRecord own = call;
  TakeOff(&own.c, children.c);
  TakeOff(&own.e, children.e);
  TakeOff(&own.p, children.p);
  TakeOff(&own.cr, children.cr);
  TakeOff(&own.cu, children.cu);
  Figures& siblings = waiting_[depth];
  PassOn(&siblings.c, call.c);
  PassOn(&siblings.e, call.e);
  PassOn(&siblings.p, call.p);
  PassOn(&siblings.cr, call.cr);
  PassOn(&siblings.cu, call.cu);
  return own;
}

}  // namespace parser
