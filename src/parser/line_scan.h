// What a trace line's own text gives, read ahead of the parser on another thread. The scanners
// are functions of the line alone: a PARSE, EXEC, FETCH or WAIT line scans to the same record
// whatever came before it, so a line can be scanned by a worker while the parser is still busy
// with earlier lines, and the parser applies the result in order (its cursor table, the trace
// time, the release). What depends on the parser's state stays with the parser.
#ifndef PELICOR_PARSER_LINE_SCAN_H_
#define PELICOR_PARSER_LINE_SCAN_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "parser/line_kind.h"
#include "parser/records.h"

namespace parser {

struct LineScan {
  // The scanner the line was read for: kParse, kExec, kFetch, kWait or kBinds.
  LineKind kind = LineKind::kIgnored;
  // A call line with a plan hash, or a WAIT line with named parameters and its own tim: both
  // only written by Oracle 10g and later. A BINDS line: its 10g+ block names a bind.
  bool newer_form = false;
  // A BINDS line whose block is in the 10g+ layout (" Bind#0", or a blank line first).
  bool newer_block = false;
  // A BINDS line: how many of the lines behind it its block takes, up to the line that ends it,
  // when a parse that keeps no binds can step over them unread (see OlderBindBlockLength and
  // NewerBindBlockLength); -1 when they must be read one by one.
  std::int32_t block_lines = -1;
  union Fields {
    Fields() : call() {}
    CallRecord call;  // a BINDS line's cursor stands in call.cursor
    WaitRecord wait;  // `nam` views the line; tim is set only when newer_form
  } fields;
};

// Scans `line` as the scanner of its kind would, for the kinds above; false for other lines.
// block_lines stays -1: it needs the lines that follow.
bool ScanAhead(std::string_view line, LineScan* scan);

struct Piece;
// The block of the 8i/9i layout that follows a "BINDS #n:" line, as a parse that keeps no binds
// steps over it: the number of lines it takes before the line that ends it (the first one
// without "bind"), which must be among the `count` pieces at `following`. -1 when it ends
// behind them, goes on in the 10g+ layout, or takes a line that may be the size-limit line.
std::int32_t OlderBindBlockLength(const Piece* following, std::size_t count);
// The same for a block in the 10g+ layout, whose first line is at `following`; *names_bind
// tells whether a line of it names a bind. -1 when the block ends behind the pieces or takes a
// line that starts with an asterisk.
std::int32_t NewerBindBlockLength(const Piece* following, std::size_t count, bool* names_bind);
// "PARSE #", "EXEC #" or "FETCH #" for kParse, kExec and kFetch.
std::string_view CallKeyword(LineKind kind);

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_SCAN_H_
