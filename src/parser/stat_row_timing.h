// The row-source figures that 9i and later append to a STAT row's op text:
//   STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='HASH JOIN (cr=12 r=0 w=0 time=3210 us)'
// and in the form of 10g and later, named after physical reads and writes:
//   op='INDEX RANGE SCAN UGH_IDX (cr=5 pr=1 pw=0 str=1 time=439 us cost=4 size=246 card=6)'
// The sorted document writes them as attributes of their own.
#ifndef PELICOR_PARSER_STAT_ROW_TIMING_H_
#define PELICOR_PARSER_STAT_ROW_TIMING_H_

#include <cstdint>
#include <string_view>

namespace parser {

struct StatRowTiming {
  // The op text contains each of "cr=", "r=", "w=" and "time=" (four separate tests; "r=" is
  // also found inside "cr=").
  bool present = false;
  // Read from the first "cr=" on as "cr=%I64d r=%I64d w=%I64d time="; the reading stops at the
  // first mismatch and the fields not reached stay 0. When "cr=N" is followed by "pr=", the
  // figures are cr, pr and pw instead.
  std::int64_t cr = 0;
  std::int64_t r = 0;
  std::int64_t w = 0;
  // The rest of the op text after the first "time=", less its last character when that rest
  // holds a ')' anywhere: "3210 us)" -> "3210 us". In the 10g form the time stops at " cost="
  // or ')': "439 us cost=4 size=246 card=6)" -> "439 us". Views `op`.
  std::string_view time;
};

StatRowTiming ReadStatRowTiming(std::string_view op);

}  // namespace parser

#endif  // PELICOR_PARSER_STAT_ROW_TIMING_H_
