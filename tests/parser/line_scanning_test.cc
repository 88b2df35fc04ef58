// Line kinds, the size-limit line and the bind value.
#include <gtest/gtest.h>

#include <string>

#include "parser/line_kind.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"

namespace {

using parser::LineKind;

TEST(LineKind, FirstCharacterAndFixedPositionsDecide) {
  struct Case {
    const char* line;
    LineKind kind;
  };
  const Case cases[] = {
      {"*** SESSION ID:(9.1407) 2004-05-07 11:20:17.631\n", LineKind::kSessionTimestamp},
      {"*** SERVICE NAME:(SYS$USERS) 2007-07-11 10:59:01.582\n", LineKind::kSessionTimestamp},
      {"*** 2004-05-07 11:20:17.632\n", LineKind::kIgnored},
      {"*** SESSION ID: no parenthesis\n", LineKind::kIgnored},
      {"BINDS #2:\n", LineKind::kBinds},
      {"EXEC #2:c=0\n", LineKind::kExec},
      {"END OF STMT\n", LineKind::kIgnored},
      {"FETCH #2:c=0\n", LineKind::kFetch},
      {"Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n", LineKind::kRelease},
      {"Oracle8i Enterprise Edition Release 8.1.7.0.0 - Production\n", LineKind::kRelease},
      {"Oracle process number: 12\n", LineKind::kProcessNumber},
      {"Oracle Database 10g Enterprise Edition Release 10.2.0.1.0 - Production\n",
       LineKind::kIgnored},
      {"ORACLE_HOME = /u01/app/oracle/product/9.2.0\n", LineKind::kIgnored},
      {"Or\n", LineKind::kRelease},  // position 6 lies past the end: NUL, not a blank
      {"PARSING IN CURSOR #3 len=1\n", LineKind::kParsingInCursor},
      {"PARSE #3:c=0\n", LineKind::kParse},
      {"PARSE ERROR #3:len=17\n", LineKind::kParseError},
      {"PARSE\n", LineKind::kIgnored},
      {"STAT #3 id=1\n", LineKind::kStat},
      {"WAIT #3: nam='x'\n", LineKind::kWait},
      {" WAIT #3: nam='x'\n", LineKind::kIgnored},
      {"", LineKind::kIgnored},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(parser::ClassifyLine(test.line, {}), test.kind) << test.line;
  }
}

TEST(LineText, SizeLimitLines) {
  EXPECT_TRUE(parser::IsSizeLimitLine("*** DUMP FILE SIZE IS LIMITED TO 5242880 BYTES ***\n"));
  EXPECT_TRUE(parser::IsSizeLimitLine("select '***' from file_list\n"));
  EXPECT_FALSE(parser::IsSizeLimitLine("*** 2004-05-07 11:20:17.632\n"));
  EXPECT_FALSE(parser::IsSizeLimitLine("** FILE *\n"));
  EXPECT_FALSE(parser::IsSizeLimitLine("*** TRACE DUMP CONTINUED FROM FILE  ***\n"));
  EXPECT_FALSE(parser::IsSizeLimitLine("*** TRACE CONTINUED FROM FILE /u01/a.trc ***\n"));
}

TEST(BindScanner, ValueBetweenQuotesOrFirstWord) {
  struct Case {
    const char* line;
    const char* value;
  };
  const Case cases[] = {
      {"   value=\"EMP\"\n", "EMP"}, {"   value=\"12/31/1995 0:0:0\"\n", "12/31/1995 0:0:0"},
      {"   value=\"A", ""},  // cut line: the last two characters go all the same
      {"   value=\"\n", ""},         {"   value=59\n", "59"},
      {"   value=0 54\n", "0"},      {"   value=\n", ""},
  };
  for (const Case& test : cases) {
    parser::BindRecord bind;
    parser::ScanBindValueLine(test.line, &bind);
    EXPECT_EQ(bind.value, test.value) << test.line;
  }
}

}  // namespace
