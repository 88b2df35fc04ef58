// The line scanners against the C library's sscanf with the same formats (%I64d written %lld),
// on well-formed and malformed lines: every field must come out as sscanf leaves it.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>

#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/trace_parser.h"

namespace {

using parser::CursorNo;

// sscanf reads cursors as %d: where ours does not fit in int, it stands aside.
long long Cursor(CursorNo ours, int theirs) {
  return ours <= static_cast<CursorNo>(INT_MAX) ? static_cast<long long>(ours) : theirs;
}

const char* const kCallLines[] = {
    "FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1083929217634352\n",
    "FETCH#3:c=0,e=1,p=2,cr=3,cu=4,mis=5,r=6,dep=7,og=8,tim=9\n",
    "FETCH  \t#3:c=0,e=1,p=2,cr=3,cu=4,mis=5,r=6,dep=7,og=8,tim=9\n",
    "FETCH #3:c= 5,e=\t6,p= -7,cr=+8,cu=0,mis=0,r=1,dep=0,og=4,tim= 12\n",
    "FETCH #3:c=99999999999999999999,e=-99999999999999999999,p=0,cr=0,cu=0,mis=0,r=0\n",
    "FETCH #3:c=9223372036854775807,e=-9223372036854775808,p=0,cr=0,cu=0,mis=0,r=0\n",
    "FETCH #3:c=0,e=142,p=0,cr=0x10,cu=0,mis=0,r=1,dep=0,og=4,tim=1\n",
    "FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=\n",
    "FETCH #3:c=0,e=142,p=0,cr=4 ,cu=0,mis=0,r=1,dep=0,og=4,tim=7\n",
    "FETCH #3:c=-,e=142\n",
    "FETCH #3:c=- 5,e=142\n",
    "FETCH #3:c=0;e=142\n",
    "FETCH #3\n",
    "FETCH #",
    "FETCH #x:c=0,e=1\n",
    " FETCH #3:c=0,e=1\n",
    "FETCH #4294967296:c=1,e=2,p=3,cr=4,cu=5,mis=6,r=7,dep=8,og=9,tim=10\n",
    "FETCH #07:c=007,e=0010,p=00,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=000\n",
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=12 and more\n",
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=-12\n",
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4\n",
    // Long numbers that end less than a word before the line does.
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1234567890123456789\n",
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=12345678901234567890\n",
    "FETCH #3:c=0,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=123456789012345678\n",
    "",
};

// %d fields whose number does not fit in an int: C leaves the result to the library. Ours
// follows glibc (the low 32 bits of the long it reads), on every platform, so a trace gives the
// same documents everywhere.
const char* const kCallLinesOutOfIntRange[] = {
    "FETCH #3:c=0,e=142,p=4294967296,cr=4294967295,cu=2147483648,mis=-2147483649,r=1\n",
    "FETCH #3:c=0,e=1,p=99999999999999999999,cr=-99999999999999999999,cu=1,mis=0\n",
    // Eighteen digits are read as they stand, nineteen and more as the general rules say.
    "FETCH #3:c=999999999999999999,e=1,p=999999999999999999,cr=4,cu=0,mis=0,r=1,dep=0,og=4,"
    "tim=999999999999999999\n",
    "FETCH #3:c=9999999999999999999,e=1,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1x\n",
};

template <std::size_t N>
void CheckCallLines(const char* const (&lines)[N]) {
  for (const char* line : lines) {
    parser::CallRecord ours;
    parser::ScanCallLine(line, parser::kFetchKeyword, &ours);
    int cursor = 0, p = -1, cr = -1, cu = -1, mis = -1, r = -1, dep = -1, og = -1;
    long long c = -1, e = -1, tim = 0;
    std::sscanf(line, "FETCH #%d:c=%lld,e=%lld,p=%d,cr=%d,cu=%d,mis=%d,r=%d,dep=%d,og=%d,tim=%lld",
                &cursor, &c, &e, &p, &cr, &cu, &mis, &r, &dep, &og, &tim);
    EXPECT_EQ(std::make_tuple(Cursor(ours.cursor, cursor), ours.c, ours.e, ours.p, ours.cr, ours.cu,
                              ours.mis, ours.r, ours.dep, ours.og, ours.tim),
              std::make_tuple(cursor, c, e, p, cr, cu, mis, r, dep, og, tim))
        << line;
  }
}

// The C libraries of Windows (and Wine's) clamp such numbers to INT_MAX/INT_MIN instead.
#ifdef _WIN32
#define PELICOR_SKIP_UNLESS_GLIBC_SCANF() \
  GTEST_SKIP() << "out-of-range %d differs in the Windows C library; glibc's result is ours"
#else
#define PELICOR_SKIP_UNLESS_GLIBC_SCANF() static_cast<void>(0)
#endif

TEST(FieldScannerVsSscanf, CallLines) {
  CheckCallLines(kCallLines);
}

TEST(FieldScannerVsSscanf, CallLinesOutOfIntRange) {
  PELICOR_SKIP_UNLESS_GLIBC_SCANF();
  CheckCallLines(kCallLinesOutOfIntRange);
}

const char* const kCursorLines[] = {
    "PARSING IN CURSOR #2 len=116 dep=1 uid=0 oct=3 lid=0 tim=1083929217636210 hv=2918884618 "
    "ad='6b5a2c34'\n",
    "PARSING IN CURSOR #2 len=116 dep=1 uid=0 oct=3 lid=0 tim=1 hv=2 ad=''\n",
    "PARSING IN CURSOR #2 len=116 dep=1 uid=0 oct=3 lid=0 tim=1 hv=2 ad='\n",
    "PARSING IN CURSOR #2 len=116 dep=1 uid=0 oct=3 lid=0 tim=1 hv=2 ad='a b'\n",
    "PARSING IN CURSOR#2len=5dep=1uid=0oct=3lid=0tim=1hv=2ad='x'\n",
    "PARSING IN CURSOR #2 len=-116 dep=oops uid=0\n",
    "PARSING IN CURSOR #",
};

const char* const kCursorLinesOutOfIntRange[] = {
    "PARSING IN CURSOR #2 len=9999999999 dep=1 uid=0 oct=3 lid=0 tim=1 hv=-2 ad='y'\n",
};

template <std::size_t N>
void CheckCursorLines(const char* const (&lines)[N]) {
  for (const char* line : lines) {
    parser::ParseInCursorRecord ours;
    parser::ScanCursorLine(line, &ours);
    int cursor = -1, len = -1, dep = -1, uid = -1, oct = -1, lid = -1;
    long long tim = 0, hv = 0;
    char ad[1100] = "";
    std::sscanf(line,
                "PARSING IN CURSOR #%d len=%d dep=%d uid=%d oct=%d lid=%d tim=%lld hv=%lld ad='%s'",
                &cursor, &len, &dep, &uid, &oct, &lid, &tim, &hv, ad);
    const std::size_t n = std::strlen(ad);
    EXPECT_EQ(std::make_tuple(Cursor(ours.cursor, cursor), ours.len, ours.dep, ours.uid, ours.oct,
                              ours.lid, ours.tim, ours.hv, ours.ad),
              std::make_tuple(cursor, len, dep, uid, oct, lid, tim, hv,
                              std::string(ad, n > 0 ? n - 1 : 0)))
        << line;
  }
}

TEST(FieldScannerVsSscanf, CursorLines) {
  CheckCursorLines(kCursorLines);
}

TEST(FieldScannerVsSscanf, CursorLinesOutOfIntRange) {
  PELICOR_SKIP_UNLESS_GLIBC_SCANF();
  CheckCursorLines(kCursorLinesOutOfIntRange);
}

const char* const kParseErrorLines[] = {
    "PARSE ERROR #3:len=17 dep=0 uid=5 oct=3 lid=5 tim=1083929217633781 err=942\n",
    "PARSE ERROR #3: len=17 dep=0 uid=5 oct=3 lid=5 tim=1 err=942\n",
    "PARSE ERROR #3:len=17 dep=0 uid=99999999999 oct=-3 lid=5 tim=1 err=904",
    "PARSE ERROR #3:len=17 dep=x uid=5\n",
    "PARSE ERROR 3:len=17\n",
};

TEST(FieldScannerVsSscanf, ParseErrorLines) {
  for (const char* line : kParseErrorLines) {
    parser::ParseErrorRecord ours;
    parser::ScanParseErrorLine(line, &ours);
    int cursor = -1, len = 0, dep = 0;
    long long uid = 0, oct = 0, lid = 0, tim = 0, err = 0;
    std::sscanf(line, "PARSE ERROR #%d:len=%d dep=%d uid=%lld oct=%lld lid=%lld tim=%lld err=%lld",
                &cursor, &len, &dep, &uid, &oct, &lid, &tim, &err);
    EXPECT_EQ(std::make_tuple(Cursor(ours.cursor, cursor), ours.len, ours.dep, ours.uid, ours.oct,
                              ours.lid, ours.tim, ours.err),
              std::make_tuple(cursor, len, dep, uid, oct, lid, tim, err))
        << line;
  }
}

const char* const kStatLines[] = {
    "STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=0 w=0 time=290 "
    "us)'\n",
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='SORT ORDER BY '\n",
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='COUNT'\n",
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='1 ROW'\n",
    "STAT #1 id=1 cnt=x pid=0 pos=1 obj=0 op='SORT'\n",
    "STAT #1 (cr=0 pr=0)'\n",
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op=''\n",
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='",
    "STAT #1",
};

TEST(FieldScannerVsSscanf, StatLines) {
  for (const char* line : kStatLines) {
    parser::StatRecord ours;
    parser::ScanStatLine(line, &ours);
    int cursor = 0, id = -1, cnt = -1, pid = -1, pos = -1, obj = -1;
    char word[1100] = "";
    std::sscanf(line, "STAT #%d id=%d cnt=%d pid=%d pos=%d obj=%d op='%s'", &cursor, &id, &cnt,
                &pid, &pos, &obj, word);
    const std::string from(std::strstr(line, word));
    EXPECT_EQ(std::make_tuple(Cursor(ours.cursor, cursor), ours.id, ours.cnt, ours.pid, ours.pos,
                              ours.obj, ours.op),
              std::make_tuple(cursor, id, cnt, pid, pos, obj,
                              from.size() >= 2 ? from.substr(0, from.size() - 2) : std::string()))
        << line;
  }
}

// Lines of 11.1.0.7 and later put a plan hash in front of tim; sscanf's format has none.
TEST(CallLineScanner, StepsOverThePlanHash) {
  const struct {
    const char* line;
    bool plan_hash;
    std::int64_t tim;
  } cases[] = {
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=2725028981,tim=3000\n", true, 3000},
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=-7,tim=3000\n", true, 3000},
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh= 7,tim= 3000\n", true, 3000},
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=7,tim\n", true, 0},
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,plh=7\n", true, 0},
      {"EXEC #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,xyz=7,tim=3000\n", false, 0},
  };
  for (const auto& test : cases) {
    parser::CallRecord call;
    EXPECT_EQ(parser::ScanCallLine(test.line, parser::kExecKeyword, &call), test.plan_hash)
        << test.line;
    EXPECT_EQ(std::make_tuple(call.cursor, call.e, call.og, call.tim),
              std::make_tuple(CursorNo{1}, std::int64_t{5}, 1, test.tim))
        << test.line;
  }
}

// A whole WAIT line of either form, read by the quick path where it can, against the general
// scanners applied one after the other.
TEST(WaitLineScanner, WholeLinesReadAsTheGeneralScannersReadThem) {
  const char* const lines[] = {
      "WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1\n",
      "WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1 \r\n",
      "WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1 x\n",
      "WAIT #1: nam='x' ela= 5\n",
      "WAIT #4: nam='db file scattered read' ela= 28810 file#=4 block#=548 blocks=5 obj#=52566 "
      "tim=881500264\n",
      "WAIT #9: nam='SQL*Net message from client' ela= 977 driver id=1413697536 #bytes=1 p3=0 "
      "obj#=-1 tim=5793511831927\n",
      "WAIT #9: nam='x' ela= 977 a=1 b=-2 c=3 obj#=-1 tim=5793511831927\n",
      "WAIT #9: nam='x' ela= 977 a=1 b=2 obj#=-1 tim=5793511831927\n",
      "WAIT #9: nam='x' ela= 977 a=1 b=2 c=3 obj#=5 obj#=-1 tim=5793511831927\n",
      "WAIT #9: nam='x' ela= 977 a=1 b=2 c=3 obj#=-1 tim=57 tim=58\n",
      "WAIT #9: nam='Backup: MML delay' ela= 3 p1=1 p2=2 p3=3\n",
      "WAIT #9: nam='Backup: MML delay' ela= 3 a=1 b=2 c=3 obj#=-1 tim=5\n",
      "WAIT #9: nam='ela' ela= 3 p1=1 p2=2 p3=3\n",
      "WAIT #99999999999999999999: nam='x' ela= 3 p1=1 p2=2 p3=3\n",
      "WAIT #9:nam='x' ela= 3 p1=1 p2=2 p3=3\n",
  };
  for (const char* line : lines) {
    parser::WaitRecord quick;
    const bool quick_named = parser::ScanWaitOwnTime(line, &quick);
    parser::WaitRecord general;
    std::size_t ela = 0;
    const std::size_t scanned = parser::ScanWaitFields(line, &general, &ela);
    const bool older = scanned != std::string_view::npos && parser::IsBlank(line + scanned);
    const bool general_named =
        !older && ela != std::string_view::npos &&
        parser::ScanNamedWaitFields(std::string_view(line).substr(ela), &general);
    EXPECT_EQ(std::make_tuple(quick_named, quick.cursor, std::string(quick.nam), quick.ela,
                              quick.p1, quick.p2, quick.p3, quick.tim),
              std::make_tuple(general_named, general.cursor, std::string(general.nam), general.ela,
                              general.p1, general.p2, general.p3, general.tim))
        << line;
  }
}

// The name is the text between the quotes behind "nam=", up to the first "ela" of the line.
TEST(FieldScannerVsSscanf, WaitLines) {
  const struct {
    const char* line;
    const char* name;
  } cases[] = {
      {"WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1\n",
       "db file sequential read"},
      {"WAIT #1: nam='SQL*Net message to client' ela=4 p1=1650815232 p2=1 p3=0\n",
       "SQL*Net message to client"},
      {"WAIT #4: nam='db file scattered read' ela= 28810 file#=4 block#=548 blocks=5 obj#=52566 "
       "tim=881500264\n",
       "db file scattered read"},
      {"WAIT #1: nam='x' ela= -5 p1=-1 p2=99999999999999999999 p3=3\n", "x"},
      {"WAIT #1: nam='x' ela= 5 p1= 1 p2 =2 p3=3\n", "x"},
      {"WAIT #1: nam='x' ela\n", "x"},
      {"WAIT #1: nam='enq: TX - row lock contention' ela= 5 p1=1 p2=2 p3=3\n",
       "enq: TX - row lock contention"},
      {"WAIT #1: nam='' ela= 7 p1=0 p2=0 p3=0\n", ""},
      {"WAIT #1: nam=ela= 7\n", ""},
      {"WAIT #1: nam='no timing here'\n", ""},
      {"WAIT #1: nam='gc delay' ela= 3 p1=0\n", "gc"},
      {"WAIT #1: ela= 9 p1=1\n", ""},
      {"WAIT #1: nam=\n", ""},
  };
  for (const auto& test : cases) {
    parser::WaitRecord ours;
    parser::ScanWaitLine(test.line, &ours);
    int cursor = 0;
    long long ela = 0, p1 = 0, p2 = 0, p3 = 0;
    std::sscanf(test.line, "WAIT #%d:", &cursor);
    // The figures behind the first "ela" after "nam=": a line without a name has none.
    const char* name = std::strstr(test.line, "nam=");
    if (const char* from = name != nullptr ? std::strstr(name, "ela") : nullptr) {
      std::sscanf(from, "ela= %lld p1=%lld p2=%lld p3=%lld", &ela, &p1, &p2, &p3);
    }
    EXPECT_EQ(std::make_tuple(Cursor(ours.cursor, cursor), std::string(ours.nam), ours.ela, ours.p1,
                              ours.p2, ours.p3),
              std::make_tuple(cursor, std::string(test.name), ela, p1, p2, p3))
        << test.line;
  }
}

const char* const kBindDefinitionLines[] = {
    " bind 0: dty=2 mxl=22(22) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0\n",
    " bind 1: dty=1 mxl=32(03) mal=00 scl=00 pre=00 oacflg=18 oacfl2=0010 size=32 offset=0\n",
    " bind 0: dty=1 mxl=32(30) mal=00 scl=00 pre=00 oacflg=13 oacfl2=b38f0000000001 size=32 "
    "offset=0\n",
    "bind 0:dty=2 mxl=22 (22)mal=00 scl=00\n",
    " bind 0: dty=2 mxl=22(22) mal=0a scl=00 pre=00\n",
    " bind 2: (No oacdef for this bind)\n",
};

TEST(FieldScannerVsSscanf, BindDefinitionLines) {
  for (const char* line : kBindDefinitionLines) {
    parser::BindRecord ours;
    parser::ScanBindDefinitionLine(line, &ours);
    int v[11] = {-1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    int offset = 0;
    std::sscanf(line,
                " bind %d: dty=%d mxl=%d(%d) mal=%d scl=%d pre=%d oacflg=%d oacfl2=%d size=%d "
                "offset=%d",
                &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9], &offset);
    const int got[11] = {ours.bind, ours.dty,    ours.mxl,    ours.pl,   ours.mal,   ours.scl,
                         ours.pre,  ours.oacflg, ours.oacfl2, ours.size, ours.offset};
    for (int i = 0; i < 10; ++i) EXPECT_EQ(got[i], v[i]) << line << " field " << i;
    EXPECT_EQ(ours.offset, offset) << line;
  }
}

const char* const kBindBufferLines[] = {
    "   bfp=0a4f1c08 bln=22 avl=02 flg=05\n",
    "   bfp=8000000100172328 bln=22 avl=00 flg=05",
    "bfp=x bln=1\n",
    "   bfp= bln=22 avl=02 flg=05\n",
};

TEST(FieldScannerVsSscanf, BindBufferLines) {
  for (const char* line : kBindBufferLines) {
    parser::BindRecord ours;
    parser::ScanBindBufferLine(line, &ours);
    char bfp[1100] = "";
    int bln = 0, avl = 0, flg = 0;
    std::sscanf(line, "   bfp=%s bln=%d avl=%d flg=%d", bfp, &bln, &avl, &flg);
    EXPECT_EQ(std::make_tuple(ours.bfp, ours.bln, ours.avl, ours.flg),
              std::make_tuple(std::string(bfp), bln, avl, flg))
        << line;
  }
}

TEST(FieldScannerVsSscanf, VersionText) {
  for (const char* text : {"9.2.0.4.0", "10.2.0", "11 . 2.0.1.0", "x.1", "", "9.2.0.4.0.7"}) {
    int v[5] = {0, 0, 0, 0, 0};
    std::sscanf(text, "%d.%d.%d.%d.%d", &v[0], &v[1], &v[2], &v[3], &v[4]);
    parser::CTraceParser parser_version("", text);
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(parser_version.Version()[static_cast<std::size_t>(i)], v[i]) << text;
  }
}

// Cursor numbers are addresses from 11.2.0.2 on: they must neither wrap nor collide. A sign
// is read as %d reads it.
TEST(FieldScanner, CursorsAreUnsigned64Bit) {
  struct Case {
    const char* line;
    CursorNo cursor;
    std::int64_t c;  // shows whether scanning went on past the cursor
  };
  const Case cases[] = {
      {"FETCH #140736410372616:c=5", 140736410372616ULL, 5},
      {"FETCH #2147483648:c=5", 2147483648ULL, 5},
      {"FETCH #18446744073709551615:c=5", 18446744073709551615ULL, 5},
      {"FETCH #99999999999999999999:c=5", 18446744073709551615ULL, 5},
      {"FETCH #-1:c=5", 18446744073709551615ULL, 5},
      {"FETCH #+1:c=5", 1, 5},
      {"FETCH #-:c=5", 0, -1},
      {"FETCH # 12:c=5", 12, 5},
  };
  for (const Case& test : cases) {
    parser::CallRecord call;
    parser::ScanCallLine(test.line, parser::kFetchKeyword, &call);
    EXPECT_EQ(call.cursor, test.cursor) << test.line;
    EXPECT_EQ(call.c, test.c) << test.line;
  }
}

}  // namespace
