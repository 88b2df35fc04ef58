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

namespace {

bool StartsWith(std::string_view line, std::string_view prefix) {
  return line.substr(0, prefix.size()) == prefix;
}

bool IsLineSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsDigitAt(std::string_view line, std::size_t i) {
  const char c = CharAt(line, i);
  return c >= '0' && c <= '9';
}

// "Oracle Database 19c Enterprise Edition Release 19.0.0.0.0 - Production", also "Oracle
// Database 11g Release 11.1.0.6.0 - Production" (SE) and "Oracle AI Database 26ai Free Release
// 23.26.0.0.0 - ...": a "Release " followed by a digit must be there.
bool IsDatabaseBanner(std::string_view line) {
  if (!StartsWith(line, "Oracle Database ") && !StartsWith(line, "Oracle AI Database ")) {
    return false;
  }
  const std::size_t release = line.find(" Release ");
  return release != std::string_view::npos && IsDigitAt(line, release + 9);
}

}  // namespace

LineKind ClassifyNewerForm(std::string_view line) {
  switch (CharAt(line, 0)) {
    case 'C':
      return StartsWith(line, "CLOSE #") ? LineKind::kClose : LineKind::kIgnored;
    case 'O':
      return IsDatabaseBanner(line) ? LineKind::kDatabaseBanner : LineKind::kIgnored;
    case 'V':
      return StartsWith(line, "Version ") && IsDigitAt(line, 8) ? LineKind::kVersion
                                                                : LineKind::kIgnored;
    case 'X':
      return StartsWith(line, "XCTEND ") ? LineKind::kXctend : LineKind::kIgnored;
    default:
      return LineKind::kIgnored;
  }
}

bool EndsNewerBindBlock(std::string_view line, const DispatchState& state) {
  if (CharAt(line, 0) == ' ') return false;  // bind sub-lines; no record starts with a blank
  if (ClassifyLine(line, state) != LineKind::kIgnored) return true;
  if (ClassifyNewerForm(line) != LineKind::kIgnored) return true;
  for (const std::string_view record : {"=====", "ERROR #", "LOB", "UNMAP #", "SORT UNMAP #"}) {
    if (StartsWith(line, record)) return true;
  }
  return false;
}

bool OpensNewerBindBlock(std::string_view line) {
  if (StartsWith(line, " Bind#") || StartsWith(line, "kkscoacd")) return true;
  for (const char c : line) {
    if (!IsLineSpace(c)) return false;
  }
  return true;
}

}  // namespace parser
