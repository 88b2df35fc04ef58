// Which scanner a trace line goes to. The first character decides, then a few fixed character
// positions; no line is trimmed, so a line that begins with a blank is ignored. New line forms
// get a kind of their own here and a case in the parser's dispatcher.
#ifndef PELICOR_PARSER_LINE_KIND_H_
#define PELICOR_PARSER_LINE_KIND_H_

#include <string_view>

namespace parser {

enum class LineKind {
  kIgnored,           // END OF STMT, =====, XCTEND, APPNAME, blank lines, anything unknown
  kSessionTimestamp,  // *** SESSION ID:(9.1407) 2004-05-07 11:20:17.631
  kBinds,             // BINDS #2:
  kExec,              // EXEC #2:c=0,e=174,...
  kFetch,             // FETCH #2:c=0,e=41,...
  kRelease,           // Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production
  kProcessNumber,     // Oracle process number: 12
  kParsingInCursor,   // PARSING IN CURSOR #2 len=116 dep=1 ...
  kParse,             // PARSE #2:c=0,e=88,...
  kParseError,        // PARSE ERROR #3:len=17 dep=0 ...
  kStat,              // STAT #2 id=1 cnt=1 ...
  kWait,              // WAIT #1: nam='SQL*Net message to client' ela= 4 ...
};

// The parser state that the choice depends on.
struct DispatchState {
  bool session_timestamp_taken = false;
  bool skip_binds = false;
  bool skip_waits = false;
};

LineKind ClassifyLine(std::string_view line, const DispatchState& state);

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_KIND_H_
