#include "parser/aggregated_xml_writer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "../support/raised.h"
#include "parser/text_report.h"
#include "writer_fixtures.h"

namespace {

using parser::DocumentContext;
using parser::StatementList;
using pelicor_test::Raised;
using pelicor_test::ScratchDir;
using writer_test::ReadXml;

constexpr const char* kFirstTkprof = R"xml(<STATEMENT>
<SQL><![CDATA[select * from emp where a < :1 and b = '&x' ]]]]><![CDATA[> c
]]></SQL>
<PARSE count="1" cpu="0.01" elapsed="0.02" disk="0" query="0" current="0" rows="0"></PARSE>
<EXEC count="1" cpu="0.03" elapsed="0.04" disk="1" query="2" current="3" rows="1"></EXEC>
<FETCH count="1" cpu="-0.01" elapsed="-0.01" disk="-1" query="-1" current="-1" rows="-1"></FETCH>
<TOTAL count="3" cpu="0.03" elapsed="0.05" disk="0" query="1" current="2" rows="0"></TOTAL>
<WAIT>
<WAITDATA name="Total Waits" elapsed="4.07"></WAITDATA>
<WAITDATA name="Network" elapsed="1.00"></WAITDATA>
<WAITDATA name="I/O" elapsed="2.50"></WAITDATA>
<WAITDATA name="Buffer" elapsed="0.00"></WAITDATA>
<WAITDATA name="Lock" elapsed="0.00"></WAITDATA>
<WAITDATA name="Latch" elapsed="0.50"></WAITDATA>
<WAITDATA name="Other" elapsed="0.07"></WAITDATA>
</WAIT>
<STAT>
<STATDATA id="1" cnt="14" pid="0" pos="1" obj="31" op="TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)"></STATDATA>
<STATDATA id="2" cnt="-1" pid="1" pos="1" obj="0" op="SORT &lt;&quot;x&quot;&gt;"></STATDATA>
</STAT>
<MISSES miss="1"></MISSES>
<OPTIMIZER goal="ALL ROWS"></OPTIMIZER>
</STATEMENT>
)xml";
constexpr const char* kZeroRows =
    R"xml(<PARSE count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></PARSE>
<EXEC count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></EXEC>
<FETCH count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></FETCH>
<TOTAL count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></TOTAL>
<MISSES miss="0"></MISSES>
<OPTIMIZER goal="UNKNOWN"></OPTIMIZER>
</STATEMENT>
)xml";
constexpr const char* kWideTkprof = R"xml(<STATEMENT>
<SQL><![CDATA[begin null; end;
]]></SQL>
<PARSE count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></PARSE>
<EXEC count="1" cpu="0.12" elapsed="0.15" disk="0" query="0" current="0" rows="1"></EXEC>
<FETCH count="0" cpu="0.00" elapsed="0.00" disk="0" query="0" current="0" rows="0"></FETCH>
<TOTAL count="1" cpu="0.12" elapsed="0.15" disk="0" query="0" current="0" rows="1"></TOTAL>
<MISSES miss="0"></MISSES>
<OPTIMIZER goal="RULE"></OPTIMIZER>
</STATEMENT>
)xml";
// Written second, so its TOTAL row shows the totals added twice.
constexpr const char* kSorted = R"xml(<?xml version="1.0" encoding="UTF-8"?><STATEMENTS>
<STATEMENT>
<PARSE count="1" cpu="0.01" elapsed="0.02" disk="0" query="0" current="0" rows="0"></PARSE>
<EXEC count="1" cpu="0.03" elapsed="0.04" disk="1" query="2" current="3" rows="1"></EXEC>
<FETCH count="1" cpu="-0.01" elapsed="-0.01" disk="-1" query="-1" current="-1" rows="-1"></FETCH>
<TOTAL count="6" cpu="0.06" elapsed="0.10" disk="0" query="2" current="4" rows="0"></TOTAL>
<WAIT>
<WAITDATA name="TotalWaits" elapsed="4.07"></WAITDATA>
<WAITDATA name="Network" elapsed="1.00"></WAITDATA>
<WAITDATA name="IO" elapsed="2.50"></WAITDATA>
<WAITDATA name="Buffer" elapsed="0.00"></WAITDATA>
<WAITDATA name="Lock" elapsed="0.00"></WAITDATA>
<WAITDATA name="Latch" elapsed="0.50"></WAITDATA>
<WAITDATA name="Other" elapsed="0.07"></WAITDATA>
</WAIT>
<STAT>
<STATDATA id="1" cnt="14" pid="0" pos="1" obj="31" op="TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)" operation="TABLE ACCESS" option="FULL" cr="8" r="7" w="0" time="10397 us"></STATDATA>
<STATDATA id="2" cnt="-1" pid="1" pos="1" obj="0" op="SORT &lt;&quot;x&quot;&gt;" operation="SORT" option=""></STATDATA>
</STAT>
<MISSES miss="1"></MISSES>
<OPTIMIZER goal="ALL ROWS"></OPTIMIZER>
</STATEMENT>
</STATEMENTS>
)xml";

std::string ZeroStatement(const std::string& sql) {
  return "<STATEMENT>\n<SQL><![CDATA[" + sql + "]]></SQL>\n" + kZeroRows;
}

// Every report opens with the banner and legend that the release documents pin.
std::string ReportHead() {
  const std::string golden =
      pelicor_test::ReadWholeFile(std::string(PELICOR_TEST_DATA) + "/release_9i.report.txt");
  return golden.substr(0, golden.find("Sort options: "));
}

// After the two documents above: the statement written in both shows its totals three times,
// the one written in the first only twice. The statements without calls are left out.
constexpr const char* kReportBody = R"(Sort options: , exe2, fch2

select * from emp where a < :1 and b = '&x' ]]> c


call     count       cpu    elapsed       disk      query    current        rows
------- ------  -------- ---------- ---------- ---------- ----------  ----------
Parse        1      0.01       0.02          0          0          0           0
Execute      1      0.03       0.04          1          2          3           1
Fetch        1     -0.01      -0.01         -1         -1         -1          -1
------- ------  -------- ---------- ---------- ---------- ----------  ----------
total        9      0.09       0.15          0          3          6           0

Misses in library cache during parse: 1
Optimizer goal: ALL ROWS
Parsing user id:

********************************************************************************

begin null; end;


call     count       cpu    elapsed       disk      query    current        rows
------- ------  -------- ---------- ---------- ---------- ----------  ----------
Parse        0      0.00       0.00          0          0          0           0
Execute      1      0.12       0.15          0          0          0           1
Fetch        0      0.00       0.00          0          0          0           0
------- ------  -------- ---------- ---------- ---------- ----------  ----------
total        2      0.24       0.30          0          0          0           2

Misses in library cache during parse: 0
Optimizer goal: RULE
Parsing user id:

********************************************************************************
)";

TEST(AggregatedXmlWriter, DocumentsAndReportAccumulateGrandTotals) {
  ScratchDir dir;
  StatementList closed = writer_test::SampleStatements();
  DocumentContext context;
  context.oracle_major_version = 8;
  context.statement_id = "from emp";
  std::int64_t divisor = 1000000;  // as a 9i banner would have set it

  parser::WriteTkprofXml(closed, context, dir.File("ora_1.trc"), &divisor);
  EXPECT_EQ(divisor, 100);
  EXPECT_EQ(ReadXml(dir.path() / "ora_1.xml"),
            std::string("<STATEMENTS>\n") + kFirstTkprof + ZeroStatement("select 1 from dual\n") +
                ZeroStatement("selec x\n") + kWideTkprof + "</STATEMENTS>\n");

  parser::WriteSortedXml(closed, context, dir.File("ora_1.trc"), &divisor);
  EXPECT_EQ(ReadXml(dir.path() / "ora_1.xml"), kSorted);

  closed.erase(std::next(closed.begin()), std::prev(closed.end()));
  const parser::SortOptions options(false, true, true, 2);
  context.sort_options = &options;
  context.time_divisor = divisor;
  std::ostringstream report;
  parser::WriteTextReport(closed, context, report);
  EXPECT_EQ(report.str(), ReportHead() + kReportBody);

  StatementList empty;
  context.sort_options = nullptr;
  std::ostringstream empty_report;
  parser::WriteTextReport(empty, context, empty_report);
  EXPECT_EQ(empty_report.str(), ReportHead() + "Sort options: \n");
}

TEST(AggregatedXmlWriter, FailuresCarryTheirMethodAndMessage) {
  const std::string check = " Please check if the trace file has reached max_dump_file_size.";
  const std::string no_info = "Trace parser did not find the parsed trace info!";
  const std::string invalid = "Trace parser found that filename specified is invalid!";
  const std::string create = "Trace parser could not create the output XML file specified!";
  const struct {
    bool sorted;
    bool empty_list;
    const char* statement_id;
    const char* file_name;
    const char* method;
    std::string message;
    bool leaves_document;
  } failures[] = {
      {false, true, "", "t.trc", "CreateSortedXML", no_info, false},
      {false, false, "", "t.log", "CreateSortedXML", invalid, false},
      {false, false, "", "no/t.trc", "CreateTkprofXML", create, false},
      {true, true, "emp", "t.trc", "CreateSortedXML", no_info + check, false},
      {true, false, "", "t.trc", "CreateSortedXML",
       "Trace parser did not find a SQL with given statement id!" + check, false},
      {true, false, "emp", "t.TrC", "CreateSortedXML", invalid, false},
      {true, false, "emp", "no/t.trc", "CreateXML", create, false},
      {true, false, "nowhere", "t.trc", "CreateXML",
       "Trace parser did not find a SQL with the statement id!" + check, true},
      {true, false, "select", "t.trc", "CreateXML",
       "Trace parser did not find a unique SQL with the statement id!", true},
  };
  for (const auto& f : failures) {
    ScratchDir dir;
    StatementList closed;
    if (!f.empty_list) closed = writer_test::SampleStatements();
    DocumentContext context;
    context.statement_id = f.statement_id;
    using FileWriter = void (*)(StatementList&, const DocumentContext&, std::string, std::int64_t*);
    const auto write = f.sorted ? static_cast<FileWriter>(parser::WriteSortedXml)
                                : static_cast<FileWriter>(parser::WriteTkprofXml);
    EXPECT_EQ(Raised([&] { write(closed, context, dir.File(f.file_name), nullptr); }),
              "TraceParser|CTraceParser::CreateXML|" + std::string(f.method) + "|" + f.message);
    // The match failures come after the whole document has been written.
    const bool written = std::filesystem::exists(dir.path() / "t.xml");
    EXPECT_EQ(written, f.leaves_document) << f.message;
    if (written) {
      const std::string document = ReadXml(dir.path() / "t.xml");
      EXPECT_EQ(document.substr(document.size() - 14), "</STATEMENTS>\n");
    }
  }
}

}  // namespace
