// The figures of a database call in a trace include those of the recursive calls made on its
// behalf: a PL/SQL block's EXEC counts the time, reads and gets of every statement it ran, and
// a hard PARSE those of the dictionary queries it needed. TKPROF reports each call without its
// recursive calls, so that summing statements counts nothing twice. RecursiveCalls keeps what
// that takes: the calls at each depth that still wait for the call that made them.
//
// A call at depth d made the calls at depth d + 1 that came since the last call at depth d or
// less (in trace order a parent's line follows its children's):
//   EXEC #5:c=0,e=157,...,dep=1,...    child of the EXEC below
//   FETCH #5:c=0,e=9756,...,dep=1,...  child of the EXEC below
//   EXEC #4:c=3999,e=10420,...,dep=0,...  its own figures: c=3999, e=10420-157-9756
#ifndef PELICOR_PARSER_RECURSIVE_CALLS_H_
#define PELICOR_PARSER_RECURSIVE_CALLS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "parser/records.h"

namespace parser {

class RecursiveCalls {
 public:
  // Takes the next call of the trace (PARSE, EXEC, FETCH or CLOSE) and returns it without the
  // figures (c, e, p, cr, cu) of its recursive calls. Fields the line did not supply (-1) are
  // neither taken off nor passed on. A call whose dep is missing or deeper than kMaxDepth is
  // returned as it is and counts for no parent.
  CallRecord OwnFigures(const CallRecord& call);
  // Forgets every waiting call (a new trace section starts).
  void Clear() {
    waiting_ = {};
    used_ = 0;
  }

  static constexpr std::int32_t kMaxDepth = 63;

 private:
  struct Figures {
    std::int64_t c = 0, e = 0, p = 0, cr = 0, cu = 0;
  };
  // Index d: the summed figures of the calls at depth d not yet claimed by a call at d - 1.
  std::array<Figures, kMaxDepth + 2> waiting_{};
  std::size_t used_ = 0;  // the levels from here on are all zero
};

}  // namespace parser

#endif  // PELICOR_PARSER_RECURSIVE_CALLS_H_
