// The records that the line scanners fill, one per trace line (or per bind of a BINDS block).
// Every field starts at the value a missing field must print as: a line that stops scanning
// early leaves the rest of its record at these values, and the writers print them as they are.
#ifndef PELICOR_PARSER_RECORDS_H_
#define PELICOR_PARSER_RECORDS_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace parser {

// Cursor numbers are small integers up to Oracle 11.2.0.1 and addresses from 11.2.0.2 on
// ("PARSING IN CURSOR #140736410372616 len=..."), so they are held at full unsigned 64-bit
// width. kNoCursor is the value of a cursor field that the line did not supply, and prints as -1
// unless the record says that a line did supply it: 18446744073709551615 is a cursor number
// too, and is printed in full.
using CursorNo = std::uint64_t;
inline constexpr CursorNo kNoCursor = ~CursorNo{0};

// One PARSE or FETCH line:
//   FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1083929217634352
struct CallRecord {
  CursorNo cursor = 0;
  std::int64_t c = -1;  // CPU time, trace ticks
  std::int64_t e = -1;  // elapsed time, trace ticks
  std::int32_t p = -1;
  std::int32_t cr = -1;
  std::int32_t cu = -1;
  std::int32_t mis = -1;
  std::int32_t r = -1;
  std::int32_t dep = -1;
  std::int32_t og = -1;
  std::int64_t tim = 0;
};

// One EXEC line; exebnd is the bind set in force when it was read (-1: no BINDS block yet).
struct ExecCallRecord : CallRecord {
  std::int32_t exebnd = 0;
};

// PARSING IN CURSOR #1 len=32 dep=0 uid=5 oct=3 lid=5 tim=1083929217633781 hv=3918581285
// ad='6b3d1f2c' followed by the SQL text lines.
struct ParseInCursorRecord {
  CursorNo cursor = kNoCursor;
  std::int32_t len = -1;
  std::int32_t dep = -1;
  std::int32_t uid = -1;
  std::int32_t oct = -1;
  std::int32_t lid = -1;
  std::int64_t tim = 0;
  std::int64_t hv = 0;
  std::string ad;
  std::string text;
  bool cursor_known = false;     // set by the scanner when the line supplied the cursor number
  bool cursor_negative = false;  // the line's cursor number was below 0 ("#-1")
};

// PARSE ERROR #3:len=17 dep=0 uid=5 oct=3 lid=5 tim=1083929217633781 err=942
// followed by the failing SQL text. uid, oct and lid are 64-bit here, as the line format has it.
struct ParseErrorRecord {
  CursorNo cursor = kNoCursor;
  std::int32_t len = 0;
  std::int32_t dep = 0;
  std::int64_t uid = 0;
  std::int64_t oct = 0;
  std::int64_t lid = 0;
  std::int64_t tim = 0;
  std::int64_t err = 0;
  std::string text;
  bool cursor_known = false;
  bool cursor_negative = false;
};

// One bind of a BINDS block (8i/9i layout):
//    bind 0: dty=2 mxl=22(21) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0
//      bfp=0a4f1c08 bln=22 avl=02 flg=05
//      value=100
struct BindRecord {
  CursorNo cursor = 0;
  std::int32_t bind = -1;
  std::int32_t dty = 0;
  std::int32_t mxl = 0;
  std::int32_t pl = 0;  // the number in parentheses behind mxl
  std::int32_t mal = 0;
  std::int32_t scl = 0;
  std::int32_t pre = 0;
  std::int32_t oacflg = 0;
  std::int32_t oacfl2 = 0;
  std::int32_t size = 0;
  std::int32_t offset = 0;
  std::int32_t bln = 0;
  std::int32_t avl = 0;
  std::int32_t flg = 0;
  std::int32_t bind_set = 0;
  // The two texts last: the integers then pack without holes (a trace holds millions of binds).
  std::string bfp;
  std::string value;
};

// STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=0 w=0 time=290 us)'
struct StatRecord {
  CursorNo cursor = 0;
  std::int32_t id = -1;
  std::int32_t cnt = -1;
  std::int32_t pid = -1;
  std::int32_t pos = -1;
  std::int32_t obj = -1;
  std::string op;
};

// WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1
// `nam` views text owned by the parser (event names are few and repeat millions of times, so
// the parser keeps one copy of each); tim is computed from the trace time, see the scanner.
struct WaitRecord {
  CursorNo cursor = 0;
  std::string_view nam;
  std::int64_t ela = 0;
  std::int64_t p1 = 0;
  std::int64_t p2 = 0;
  std::int64_t p3 = 0;
  std::int64_t tim = 0;
};

}  // namespace parser

#endif  // PELICOR_PARSER_RECORDS_H_
