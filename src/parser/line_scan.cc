#include "parser/line_scan.h"

#include "parser/line_kind.h"
#include "parser/line_text.h"
#include "parser/piece_reader.h"
#include "parser/record_scanners.h"

namespace parser {

std::string_view CallKeyword(LineKind kind) {
  switch (kind) {
    case LineKind::kParse:
      return kParseKeyword;
    case LineKind::kExec:
      return kExecKeyword;
    default:
      return kFetchKeyword;
  }
}

bool ScanAhead(std::string_view line, LineScan* scan) {
  // The kinds that no parser state can change: BINDS, WAIT and the session line depend on the
  // parse's flags and on what came before, and are classified again by the parser in any case.
  const DispatchState neutral{true, false, false};
  const LineKind kind = ClassifyLine(line, neutral);
  switch (kind) {
    case LineKind::kParse:
    case LineKind::kExec:
    case LineKind::kFetch:
      scan->kind = kind;
      scan->fields.call = CallRecord();
      scan->newer_form = ScanCallLine(line, CallKeyword(kind), &scan->fields.call);
      return true;
    case LineKind::kWait:
      scan->kind = kind;
      scan->fields.wait = WaitRecord();
      scan->newer_form = ScanWaitOwnTime(line, &scan->fields.wait);
      return true;
    case LineKind::kBinds:
      scan->kind = kind;
      scan->fields.call = CallRecord();
      ScanBindsLine(line, &scan->fields.call.cursor);
      return true;
    default:
      return false;
  }
}

// The steps of the parser's reading of an older block when it keeps no binds (ScanBinds and
// ReadBind): a line with "bind" and "dty" opens a bind, the next line is its buffer line when it
// holds "bfp", the line after that its value when it holds "value".
std::int32_t OlderBindBlockLength(const Piece* following, std::size_t count) {
  if (count == 0 || OpensNewerBindBlock(following[0].text())) return -1;
  std::size_t at = 0;  // the line in hand
  const auto takes = [&](std::size_t line) { return line < count && !following[line].asterisks; };
  while (at < count) {
    const std::string_view line = following[at].text();
    if (!Contains(line, "bind")) return static_cast<std::int32_t>(at);
    if (!takes(at)) return -1;
    ++at;
    if (!Contains(line, "dty")) continue;  //  bind 1: (No oacdef for this bind)
    if (at < count && Contains(following[at].text(), "bfp")) {
      if (!takes(at)) return -1;
      ++at;
    }
    if (at < count && Contains(following[at].text(), "value")) {
      if (!takes(at)) return -1;
      ++at;
    }
  }
  return -1;
}

// The steps of ReadNewerBinds when it keeps no binds: the block goes on up to the first line
// that ends it, whatever the lines before it are, and a " Bind#n" among them (or the run-on
// "  value= Bind#1") is what tells the parser the trace is in the newer layout. The lines that
// end a block depend on the parser's state only where they start with an asterisk (the session
// line) or with "WAIT #" when waits are skipped; the first case gives -1 here, the second is
// left to the parser.
std::int32_t NewerBindBlockLength(const Piece* following, std::size_t count, bool* names_bind) {
  const DispatchState neutral{true, false, false};
  *names_bind = false;
  for (std::size_t at = 0; at < count; ++at) {
    const std::string_view line = following[at].text();
    if (following[at].asterisks || CharAt(line, 0) == '*') return -1;
    if (EndsNewerBindBlock(line, neutral)) return static_cast<std::int32_t>(at);
    if (!*names_bind && ClassifyNewerBindLine(line) == NewerBindLine::kPosition) {
      *names_bind = true;
    }
  }
  return -1;
}

}  // namespace parser
