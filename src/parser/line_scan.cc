#include "parser/line_scan.h"

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
    default:
      return false;
  }
}

}  // namespace parser
