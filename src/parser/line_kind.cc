#include "parser/line_kind.h"

#include "parser/line_text.h"

namespace parser {

namespace {

LineKind ClassifyAsterisk(std::string_view line, const DispatchState& state) {
  // Only the first "*** S..." line with a closing parenthesis carries the session's timestamp.
  if (!state.session_timestamp_taken && CharAt(line, 1) == '*' && CharAt(line, 2) == '*' &&
      CharAt(line, 4) == 'S' && Contains(line, ")")) {
    return LineKind::kSessionTimestamp;
  }
  return LineKind::kIgnored;
}

LineKind ClassifyO(std::string_view line) {
  // "Oracle9i ..." is a release banner; "Oracle process number: 12" has a blank at 6.
  if (CharAt(line, 1) == 'r' && CharAt(line, 6) != ' ') return LineKind::kRelease;
  if (CharAt(line, 7) == 'p' && CharAt(line, 15) == 'n') return LineKind::kProcessNumber;
  return LineKind::kIgnored;
}

LineKind ClassifyP(std::string_view line) {
  if (CharAt(line, 4) == 'I') return LineKind::kParsingInCursor;
  if (CharAt(line, 6) == '#') return LineKind::kParse;
  if (CharAt(line, 5) == ' ' && CharAt(line, 6) == 'E') return LineKind::kParseError;
  return LineKind::kIgnored;
}

}  // namespace

LineKind ClassifyLine(std::string_view line, const DispatchState& state) {
  switch (CharAt(line, 0)) {
    case '*':
      return ClassifyAsterisk(line, state);
    case 'B':
      return CharAt(line, 6) == '#' && !state.skip_binds ? LineKind::kBinds : LineKind::kIgnored;
    case 'E':
      return CharAt(line, 1) == 'X' && CharAt(line, 5) == '#' ? LineKind::kExec
                                                              : LineKind::kIgnored;
    case 'F':
      return CharAt(line, 6) == '#' ? LineKind::kFetch : LineKind::kIgnored;
    case 'O':
      return ClassifyO(line);
    case 'P':
      return ClassifyP(line);
    case 'S':
      return CharAt(line, 5) == '#' ? LineKind::kStat : LineKind::kIgnored;
    case 'W':
      return CharAt(line, 5) == '#' && !state.skip_waits ? LineKind::kWait : LineKind::kIgnored;
    default:
      return LineKind::kIgnored;
  }
}

}  // namespace parser
