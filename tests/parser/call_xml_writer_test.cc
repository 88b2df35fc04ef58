#include "parser/call_xml_writer.h"

#include <gtest/gtest.h>

#include "../support/raised.h"
#include "parser/xml_paths.h"
#include "writer_fixtures.h"

namespace {

using parser::DocumentContext;
using parser::StatementList;
using pelicor_test::Raised;
using pelicor_test::ScratchDir;

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

constexpr const char* kFirstStatement = R"xml(<STATEMENT>
<CURSORNO cursor="1"></CURSORNO>
<SQL><![CDATA[select * from emp where a < :1 and b = '&x' ]]]]><![CDATA[> c
]]></SQL><PARSEINCURSOR cursor="1" len="32" dep="0" uid="5" oct="3" lid="5" tim="1000" hv="3918581285" ad="6b3d&amp;1f2c"></PARSEINCURSOR>
<PARSE>
<PARSEDATA c="1" e="2" p="0" cr="0" cu="0" mis="1" r="0" dep="0" og="4" tim="1000"></PARSEDATA>
</PARSE>
)xml";
constexpr const char* kFirstBinds = R"xml(<BIND>
<BINDDATA bind="0" dty="1" mxl="32" pl="1" mal="0" scl="0" pre="0" oacflg="3" oacflg2="16" size="32" offset="0" bfp="0a4f&lt;" bln="32" avl="8" flg="5" value="a&amp;b&lt;&quot;c&quot;&gt;" exebnd="0"></BINDDATA>
</BIND>
)xml";
constexpr const char* kFirstCallsAndStats = R"xml(<EXEC>
<EXECDATA c="3" e="4" p="1" cr="2" cu="3" mis="0" r="1" dep="0" og="1" tim="1010" exebnd="0"></EXECDATA>
</EXEC>
<FETCH>
<FETCHDATA c="-1" e="-1" p="-1" cr="-1" cu="-1" mis="-1" r="-1" dep="-1" og="-1" tim="0"></FETCHDATA>
</FETCH>
<STAT>
<STATDATA id="1" cnt="14" pid="0" pos="1" obj="31" op="TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)"></STATDATA>
<STATDATA id="2" cnt="-1" pid="1" pos="1" obj="0" op="SORT &lt;&quot;x&quot;&gt;"></STATDATA>
</STAT>
)xml";
constexpr const char* kFirstWaits = R"xml(<WAIT>
<WAITDATA nam="db file sequential read" ela="250" p1="4" p2="1234" p3="1" tim="1260"></WAITDATA>
<WAITDATA nam="SQL*Net message from client" ela="100" p1="0" p2="0" p3="0" tim="1360"></WAITDATA>
<WAITDATA nam="LATCH FREE" ela="50" p1="0" p2="0" p3="0" tim="1410"></WAITDATA>
<WAITDATA nam="latch free " ela="7" p1="0" p2="0" p3="0" tim="1417"></WAITDATA>
</WAIT>
)xml";
constexpr const char* kReopened = R"xml(<STATEMENT>
<CURSORNO cursor="7"></CURSORNO>
<SQL><![CDATA[select 1 from dual
]]></SQL><PARSEINCURSOR cursor="2" len="20" dep="1" uid="0" oct="3" lid="0" tim="1100" hv="42" ad="7a"></PARSEINCURSOR>
</STATEMENT>
)xml";
constexpr const char* kParseError = R"xml(<STATEMENT>
<CURSORNO cursor="3"></CURSORNO>
<SQL><![CDATA[selec x
]]></SQL><PARSEERRORDATA len="8" dep="0" uid="5" oct="3" lid="5" tim="1200" err="900"/></STATEMENT>
)xml";
constexpr const char* kWideCursor = R"xml(<STATEMENT>
<CURSORNO cursor="140736410372616"></CURSORNO>
<SQL><![CDATA[begin null; end;
]]></SQL><PARSEINCURSOR cursor="140736410372616" len="17" dep="0" uid="5" oct="47" lid="5" tim="1300" hv="7" ad="8c"></PARSEINCURSOR>
<EXEC>
<EXECDATA c="12" e="15" p="0" cr="0" cu="0" mis="0" r="1" dep="0" og="3" tim="1315" exebnd="-1"></EXECDATA>
</EXEC>
</STATEMENT>
)xml";

std::string Head() {
  return std::string(kDeclaration) +
         "<STATEMENTS tim=\"2004-05-07 11:26:57.634\n\" FirstParseInCursorTim=\"1000\">\n";
}

DocumentContext Context(const ScratchDir& dir) {
  DocumentContext context;
  context.session_timestamp = "2004-05-07 11:26:57.634\n";
  context.first_cursor_time = 1000;
  context.output_directory = dir.path().string() + "/";
  return context;
}

std::string WriteAndRead(const StatementList& closed, const DocumentContext& context,
                         const ScratchDir& dir) {
  parser::WriteCallXml(closed, context, "ora_1234.trc");
  return writer_test::ReadXml(dir.path() / "ora_1234.xml");
}

TEST(CallXmlWriter, WritesEveryCallOfEveryStatementUnlessFlagsLeaveThemOut) {
  ScratchDir dir;
  DocumentContext context = Context(dir);
  EXPECT_EQ(WriteAndRead(writer_test::SampleStatements(), context, dir),
            Head() + kFirstStatement + kFirstBinds + kFirstCallsAndStats + kFirstWaits +
                "</STATEMENT>\n" + kReopened + kParseError + kWideCursor + "</STATEMENTS>\n");
  context.skip_binds = true;
  context.skip_waits = true;
  context.top_level_only = true;
  EXPECT_EQ(WriteAndRead(writer_test::SampleStatements(), context, dir),
            Head() + kFirstStatement + kFirstCallsAndStats + "</STATEMENT>\n" + kWideCursor +
                "</STATEMENTS>\n");
}

TEST(CallXmlWriter, EmptyListAndMissingCursorNumbers) {
  ScratchDir dir;
  StatementList closed;
  EXPECT_EQ(WriteAndRead(closed, Context(dir), dir), Head() + "</STATEMENTS>\n");
  closed.push_back(std::make_unique<parser::TraceStatement>());  // nothing was scanned
  EXPECT_EQ(WriteAndRead(closed, Context(dir), dir),
            Head() +
                "<STATEMENT>\n<CURSORNO cursor=\"-1\"></CURSORNO>\n<SQL><![CDATA[]]></SQL>"
                "<PARSEINCURSOR cursor=\"-1\" len=\"-1\" dep=\"-1\" uid=\"-1\" oct=\"-1\" "
                "lid=\"-1\" tim=\"0\" hv=\"0\" ad=\"\"></PARSEINCURSOR>\n</STATEMENT>\n"
                "</STATEMENTS>\n");
}

TEST(CallXmlWriter, FailsWithTheCreateMessage) {
  ScratchDir dir;
  DocumentContext context = Context(dir);
  context.output_directory = dir.File("missing") + "/";
  EXPECT_EQ(Raised([&] {
              parser::WriteCallXml(writer_test::SampleStatements(), context, "ora_1234.trc");
            }),
            "TraceParser|CTraceParser::CreateXML|CreateXML|Trace parser failed to create output "
            "XML file!");
}

TEST(XmlPaths, FirstDotForCallXmlLastDotForAggregated) {
  const struct {
    const char* name;
    const char* call_xml;
    const char* aggregated;
  } cases[] = {
      {"trace.trc", "trace.xml", "trace.xml"},
      {"a.b.trc", "a.xmlrc", "a.b.xml"},
      {"trace.TRC.bak", "trace.xml.bak", "trace.TRC.xml"},
      {"trace", "trace.xml", "trace.xml"},
      {"trace.tr", "trace.tr.xml", "trace.xml"},
      {"trace.", "trace..xml", "trace.xml"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(parser::CallXmlPath(c.name, ""), c.call_xml) << c.name;
    EXPECT_EQ(parser::AggregatedXmlPath(c.name), c.aggregated) << c.name;
  }
  EXPECT_EQ(parser::CallXmlPath("trace_1234.trc", "C:\\out\\"), "C:\\out\\trace_1234.xml");
  EXPECT_TRUE(parser::HasTraceExtension("x.TRC.bak"));
  EXPECT_FALSE(parser::HasTraceExtension("x.Trc"));
}

}  // namespace
