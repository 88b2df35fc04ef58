// One scanning function per trace line kind: each reads one line into its record with the
// rules of field_scanner.h and never fails; fields the line does not supply keep the values
// they had (the records' initial values when the caller passes a fresh record). None of them
// reads further lines: the parser does that (SQL text, the lines of a BINDS block).
#ifndef PELICOR_PARSER_RECORD_SCANNERS_H_
#define PELICOR_PARSER_RECORD_SCANNERS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "parser/records.h"

namespace parser {

// "PARSE #", "EXEC #" or "FETCH #" followed by
// "%d:c=%I64d,e=%I64d,p=%d,cr=%d,cu=%d,mis=%d,r=%d,dep=%d,og=%d,tim=%I64d", where 11.1.0.7 and
// later write ",plh=%I64d" before ",tim=" (the plan hash is read over, not kept). True when the
// line had the plan hash.
inline constexpr std::string_view kParseKeyword = "PARSE #";
inline constexpr std::string_view kExecKeyword = "EXEC #";
inline constexpr std::string_view kFetchKeyword = "FETCH #";
bool ScanCallLine(std::string_view line, std::string_view keyword, CallRecord* record);

// "CLOSE #%u:c=%I64d,e=%I64d,dep=%d,type=%d,tim=%I64d" (11.1.0.7 on) into cursor, c, e, dep and
// tim; the type (how the cursor went into the session cursor cache) is not kept.
void ScanCloseLine(std::string_view line, CallRecord* record);

// "XCTEND rlbk=%d, rd_only=%d, tim=%I64d": the tim that 11.1.0.7 and later write; false (and
// *tim untouched) without one.
bool ScanXctendTime(std::string_view line, std::int64_t* tim);

// "PARSING IN CURSOR #%d len=%d dep=%d uid=%d oct=%d lid=%d tim=%I64d hv=%I64d ad='%s'"; the ad
// text loses its last character (the closing quote). The SQL text is not read here.
void ScanCursorLine(std::string_view line, ParseInCursorRecord* record);

// "PARSE ERROR #%d:len=%d dep=%d uid=%I64d oct=%I64d lid=%I64d tim=%I64d err=%I64d".
void ScanParseErrorLine(std::string_view line, ParseErrorRecord* record);

// "STAT #%d id=%d cnt=%d pid=%d pos=%d obj=%d op='%s'": op is the line from the first place
// where the op's first word occurs, without the last two characters (quote and newline).
void ScanStatLine(std::string_view line, StatRecord* record);

// "WAIT #%d:", the event name between "nam='" and the "' " before the next "ela", then
// "ela= %I64d p1=%I64d p2=%I64d p3=%I64d". `nam` views the line; tim is not touched.
void ScanWaitLine(std::string_view line, WaitRecord* record);
// The same; returns where that scan ended in the line, or npos when it stopped early, and puts
// where "ela" stands into *ela_at (npos without one; ela_at may be null).
std::size_t ScanWaitFields(std::string_view line, WaitRecord* record, std::size_t* ela_at);

// The rest of a 10.2+ WAIT line from its "ela" on (`rest`), whose parameters are named after the
// event's and which ends with the object and the wait's own time:
//   WAIT #4: nam='db file sequential read' ela= 12 file#=4 block#=1234 blocks=1 obj#=75 tim=12..
// When it has a " tim=": p1, p2 and p3 become the values of the first three "name=value" fields
// behind ela (the names may hold blanks: "driver id=675562835"), tim the line's own, and the
// result is true. Otherwise nothing changes and the result is false.
bool ScanNamedWaitFields(std::string_view rest, WaitRecord* record);
// A whole WAIT line in either form: ScanWaitFields, then, unless the line ended where the older
// form ends, ScanNamedWaitFields on the rest. True when the named form (with its tim) was read;
// otherwise tim is untouched: such a wait takes its time from the trace's.
bool ScanWaitOwnTime(std::string_view line, WaitRecord* record);

// "BINDS #%d:" into *cursor.
void ScanBindsLine(std::string_view line, CursorNo* cursor);

// The three lines of one bind (8i/9i layout):
//  " bind %d: dty=%d mxl=%d(%d) mal=%d scl=%d pre=%d oacflg=%d oacfl2=%d size=%d offset=%d"
//  "   bfp=%s bln=%d avl=%d flg=%d"
//  "   value=..." : the text between the first double quote and the last two characters of the
//                   line when it holds a double quote, else the first word after "value=".
void ScanBindDefinitionLine(std::string_view line, BindRecord* record);
void ScanBindBufferLine(std::string_view line, BindRecord* record);
void ScanBindValueLine(std::string_view line, BindRecord* record);

// The lines of one bind in the 10g+ layout, each with its leading blanks:
//  " Bind#%d"
//  "  oacdty=%d mxl=%d(%d) mxlc=%d mal=%d scl=%d pre=%d"         -> dty, mxl, pl, mal, scl, pre
//  "  oacflg=%d fl2=%d frm=%d csi=%d siz=%d off=%d"               -> oacflg, oacfl2, size, offset
//  "  kxsbbbfp=%s  bln=%d  avl=%d  flg=%d"                        -> bfp, bln, avl, flg
//  "  value=..."
// Fields are found by name, so a field a release leaves out only leaves its own value alone;
// numbers are read as decimal, as in the older layout.
enum class NewerBindLine { kOther, kPosition, kType, kFlags, kBuffer, kValue, kNoDefinition };
NewerBindLine ClassifyNewerBindLine(std::string_view line);
// " Bind#3" -> 3 (also the " Bind#1" that 11.2.0.4 can run into a value line).
void ScanBindPositionLine(std::string_view line, BindRecord* record);
void ScanBindTypeLine(std::string_view line, BindRecord* record);
void ScanBindFlagsLine(std::string_view line, BindRecord* record);
void ScanBindAddressLine(std::string_view line, BindRecord* record);
// The value text behind "value=": the text between the double quotes when it starts with one
// (without the closing quote when the line has it: the value then goes on over the next lines),
// else the rest of the line ("0 54" for a national character value), both without the line end.
// True when a quoted value is still open at the end of the line.
bool ScanNewerBindValue(std::string_view line, BindRecord* record);
// A line that goes on an open quoted value: appended with the line break before it; true while
// the value stays open.
bool ContinueBindValue(std::string_view line, BindRecord* record);

}  // namespace parser

#endif  // PELICOR_PARSER_RECORD_SCANNERS_H_
