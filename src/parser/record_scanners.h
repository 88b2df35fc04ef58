// One scanning function per trace line kind: each reads one line into its record with the
// rules of field_scanner.h and never fails; fields the line does not supply keep the values
// they had (the records' initial values when the caller passes a fresh record). None of them
// reads further lines: the parser does that (SQL text, the lines of a BINDS block).
#ifndef PELICOR_PARSER_RECORD_SCANNERS_H_
#define PELICOR_PARSER_RECORD_SCANNERS_H_

#include <string_view>

#include "parser/records.h"

namespace parser {

// "PARSE #", "EXEC #" or "FETCH #" followed by
// "%d:c=%I64d,e=%I64d,p=%d,cr=%d,cu=%d,mis=%d,r=%d,dep=%d,og=%d,tim=%I64d".
inline constexpr std::string_view kParseKeyword = "PARSE #";
inline constexpr std::string_view kExecKeyword = "EXEC #";
inline constexpr std::string_view kFetchKeyword = "FETCH #";
void ScanCallLine(std::string_view line, std::string_view keyword, CallRecord* record);

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

}  // namespace parser

#endif  // PELICOR_PARSER_RECORD_SCANNERS_H_
