// Seven counters summed over calls. Missing fields (-1) are summed as -1, like any other value.
#ifndef PELICOR_PARSER_CALL_TOTALS_H_
#define PELICOR_PARSER_CALL_TOTALS_H_

#include <cstdint>

#include "parser/records.h"

namespace parser {

struct CallTotals {
  std::int64_t count = 0;
  double cpu = 0;      // sum of c, trace ticks
  double elapsed = 0;  // sum of e, trace ticks
  std::int64_t disk = 0;
  std::int64_t query = 0;
  std::int64_t current = 0;
  std::int64_t rows = 0;

  // One more call: count + 1, and c, e, p, cr, cu, r into their sums (mis, dep, og, tim are not).
  void Add(const CallRecord& call);
  // Field by field.
  void Add(const CallTotals& other);
};

}  // namespace parser

#endif  // PELICOR_PARSER_CALL_TOTALS_H_
