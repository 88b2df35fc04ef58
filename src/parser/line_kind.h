// Which scanner a trace line goes to. The first character decides, then a few fixed character
// positions; no line is trimmed, so a line that begins with a blank is ignored.
//
// ClassifyLine knows the line forms of the 8i/9i traces and nothing else. Forms that later
// releases added are recognised only among the lines it ignores (ClassifyNewerForm), so that
// the older forms are read exactly as before whatever the newer forms need.
#ifndef PELICOR_PARSER_LINE_KIND_H_
#define PELICOR_PARSER_LINE_KIND_H_

#include <cstdint>
#include <string_view>

namespace parser {

enum class LineKind : std::uint8_t {
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
  // Forms of Oracle 10g and later, from ClassifyNewerForm only:
  kDatabaseBanner,  // Oracle Database 11g Enterprise Edition Release 11.1.0.6.0 - 64bit Production
  kVersion,         // Version 19.14.2.0.0 (18c on; the kernel's "Version:" line is no such line)
  kClose,           // CLOSE #140641987987624:c=3,e=3,dep=0,type=1,tim=5793511831927
  kXctend,          // XCTEND rlbk=0, rd_only=1, tim=5793511831940 (tim from 11.1.0.7 on)
};

// The parser state that the choice depends on.
struct DispatchState {
  bool session_timestamp_taken = false;
  bool skip_binds = false;
  bool skip_waits = false;
};

LineKind ClassifyLine(std::string_view line, const DispatchState& state);

// For a line that ClassifyLine ignores: its kind among the newer forms, else kIgnored.
LineKind ClassifyNewerForm(std::string_view line);

// True when a line ends a BINDS block of the 10g+ layout: a line that either classifier gives
// a kind, or one of the other record lines ("=====", "ERROR #...", "LOBREAD: ...", "UNMAP
// #..."). Bind sub-lines, blank lines, "kkscoacd", timestamp lines and value dumps do not.
bool EndsNewerBindBlock(std::string_view line, const DispatchState& state);

// True for the first line after "BINDS #n:" in the 10g+ layout: " Bind#0", "kkscoacd" (10.2) or
// a blank line (12c on). The 8i/9i layout goes on with " bind 0: dty=...".
bool OpensNewerBindBlock(std::string_view line);

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_KIND_H_
