// The terminal form of a profile, whole, and the escaping that keeps trace text text on the
// HTML page.
#include <gtest/gtest.h>

#include <sstream>

#include "report/html_text.h"
#include "report/profile_text.h"
#include "report_fixtures.h"

namespace {

TEST(ProfileText, Oracle8iProfileInHundredColumns) {
  std::ostringstream out;
  report::WriteProfileText(report_test::ProfileOf(report_test::kOracle8i), 5, out);
  const std::string text = out.str();
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100u) << line;
  EXPECT_EQ(text, R"(Response-time profile of e:\oracle\admin\TEST\udump\ORA00138.TRC
Oracle8i Enterprise Edition Release 8.1.7.0.0 - Production
instance test, process 138, image: ORACLE.EXE
Response time 0.500000 s in 1 session, 4 database calls (trace times in centiseconds)

Component                                      Seconds   Share       Count   Average ms   Maximum ms
----------------------------------------------------------------------------------------------------
CPU in database calls                            0.030    6.0%           4
db file scattered read                           0.050   10.0%           1       50.000       50.000
SQL*Net message to client                        0.000    0.0%           1        0.000        0.000
unaccounted-for                                  0.020    4.0%
Between calls (idle):
  SQL*Net message from client                    0.400   80.0%           1      400.000      400.000
----------------------------------------------------------------------------------------------------
Total response time                              0.500  100.0%

Top statements by their own elapsed time (recursive work excluded; inclusive beside)
  #  Share      Own s    Incl. s     CPU s    Execs  Rows/ex  SQL text
----------------------------------------------------------------------------------------------------
  1  20.0%      0.100      0.100     0.030        1     14.0  select ename from emp where 1=1

====================================================================================================
Statement 1  depth 0  parsed 1 time(s)
select ename from emp where 1=1

call        count        cpu    elapsed       disk      query    current       rows
Parse           1      0.010      0.020          0          0          0          0
Execute         1      0.000      0.000          0          0          0          0
Fetch           2      0.020      0.080          8          4          0         14
total           4      0.030      0.100          8          4          0         14

Per execution ms        min     median        max
  elapsed            80.000     80.000     80.000
  cpu                20.000     20.000     20.000

Response time with recursive work: 0.100000 s
  CPU in database calls                          0.030   30.0%
  db file scattered read                         0.050   50.0%
  SQL*Net message to client                      0.000    0.0%
  unaccounted-for                                0.020   20.0%

Waits on this cursor                             Times       Max ms      Total s
  SQL*Net message from client                        1      400.000        0.400
  db file scattered read                             1       50.000        0.050
  SQL*Net message to client                          1        0.000        0.000

)");
}

TEST(HtmlText, TraceTextStaysText) {
  struct Case {
    std::string_view in;
    std::string_view out;
  };
  const Case cases[] = {
      {"select 1 from dual", "select 1 from dual"},
      {"<script>alert('x')</script>", "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;"},
      {"a & b \"c\"", "a &amp; b &quot;c&quot;"},
      {"]]>", "]]&gt;"},
      {"tab\tline\ncr\r", "tab\tline\ncr\r"},
      {std::string_view("nul\0bell\a", 9),
       "nul\xEF\xBF\xBD"
       "bell\xEF\xBF\xBD"},
      {"caf\xC3\xA9 \xE2\x82\xAC", "caf\xC3\xA9 \xE2\x82\xAC"},  // valid UTF-8 stays
      {"caf\xE9 \x80", "caf\xC3\xA9 \xE2\x82\xAC"},              // Windows-1252 bytes
      {"\xC0\xAF \xED\xA0\x80",
       "\xC3\x80\xC2\xAF \xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // overlong, surrogate
      {"\x81", "\xEF\xBF\xBD"},                           // no character in Windows-1252
  };
  for (const Case& c : cases) EXPECT_EQ(report::HtmlText(c.in), c.out) << c.in;
}

}  // namespace
