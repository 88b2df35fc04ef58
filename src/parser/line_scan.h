// What a trace line's own text gives, read ahead of the parser on another thread. The scanners
// are functions of the line alone: a PARSE, EXEC, FETCH or WAIT line scans to the same record
// whatever came before it, so a line can be scanned by a worker while the parser is still busy
// with earlier lines, and the parser applies the result in order (its cursor table, the trace
// time, the release). What depends on the parser's state stays with the parser.
#ifndef PELICOR_PARSER_LINE_SCAN_H_
#define PELICOR_PARSER_LINE_SCAN_H_

#include <cstdint>
#include <string_view>

#include "parser/line_kind.h"
#include "parser/records.h"

namespace parser {

struct LineScan {
  // The scanner the line was read for: kParse, kExec, kFetch or kWait.
  LineKind kind = LineKind::kIgnored;
  // A call line with a plan hash, or a WAIT line with named parameters and its own tim: both
  // only written by Oracle 10g and later.
  bool newer_form = false;
  union Fields {
    Fields() : call() {}
    CallRecord call;
    WaitRecord wait;  // `nam` views the line; tim is set only when newer_form
  } fields;
};

// Scans `line` as the scanner of its kind would, for the kinds above; false for other lines.
bool ScanAhead(std::string_view line, LineScan* scan);
// "PARSE #", "EXEC #" or "FETCH #" for kParse, kExec and kFetch.
std::string_view CallKeyword(LineKind kind);

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_SCAN_H_
