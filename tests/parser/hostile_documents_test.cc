// A trace made of every hostile input we have met (bytes that are not UTF-8, control
// characters, CDATA end markers, quotes and ampersands in every text field, an unknown plan
// operation) gives well-formed documents that read back as the trace meant them.
#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <sstream>
#include <string>

#include "parser/trace_parser.h"
#include "support/activity_log.h"
#include "support/exceptions.h"
#include "writer_fixtures.h"

namespace {

using pelicor_test::ScratchDir;

constexpr const char kHostileTrace[] =
    "Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n"
    "*** SESSION ID:(9.1407) 2004-05-07 \x01\"<&\xE9\n"
    "=====================\n"
    "PARSING IN CURSOR #1 len=40 dep=0 uid=59 oct=3 lid=59 tim=1083929217631040 hv=4235652837 "
    "ad='6b&<\"\xE9'\n"
    "select 'caf\xE9', '\x01\x1b', '\xE2\x82\xAC' from dual ]]> x\n"
    "END OF STMT\n"
    "PARSE #1:c=0,e=88,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=1083929217636201\n"
    "BINDS #1:\n"
    " bind 0: dty=1 mxl=32(03) mal=00 scl=00 pre=00 oacflg=18 oacfl2=1 size=32 offset=0\n"
    "   bfp=0a4f\x02z bln=32 avl=03 flg=05\n"
    "   value=\"caf\xE9 \x1b <&\"]]>\"\n"
    "EXEC #1:c=0,e=174,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=1083929217636632\n"
    "WAIT #1: nam='db \x01"
    "file\xFF read' ela= 4 p1=1 p2=1 p3=0\n"
    "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=18 op='FOO'\n"
    "STAT #1 id=2 cnt=1 pid=1 pos=1 obj=37 op='HASH JOIN (cr=3 r=0 w=0 time=<\"&\xE9 us)'\n"
    "PARSE ERROR #2:len=10 dep=0 uid=59 oct=3 lid=59 tim=1083929217641977 err=942\n"
    "selec \xE9\x01 ]]>\n"
    "=====================\n";

// The text of an element whose CDATA was split at a "]]>".
std::string TextOf(const pugi::xml_node& element) {
  std::string text;
  for (const pugi::xml_node& piece : element.children()) text += piece.value();
  return text;
}

pugi::xml_document Parsed(const std::string& document) {
  pugi::xml_document parsed;
  const pugi::xml_parse_result result = parsed.load_buffer(document.data(), document.size());
  EXPECT_TRUE(result) << result.description() << " at " << result.offset << ": " << document;
  return parsed;
}

TEST(HostileTrace, EveryDocumentIsWellFormedAndReadsBackAsMeant) {
  const ScratchDir dir;
  const std::string trace = dir.File("hostile.trc");
  pelicor_test::WriteWholeFile(trace, kHostileTrace);
  parser::CTraceParser parser;
  parser.Parse(trace, 0);
  parser.SetStatementId("caf");
  // All three documents of a trace take the same name; each is read before the next.
  parser.CreateXML(trace);
  const std::string calls = pelicor_test::ReadWholeFile(dir.path() / "hostile.xml");
  parser.CreateTkprofXML(trace);
  const std::string tkprof = pelicor_test::ReadWholeFile(dir.path() / "hostile.xml");
  parser.CreateSortedXML(trace);
  const std::string sorted = pelicor_test::ReadWholeFile(dir.path() / "hostile.xml");
  std::ostringstream report;
  parser.WriteTextReport(report);

  const pugi::xml_document call_document = Parsed(calls);
  Parsed(tkprof);
  const pugi::xml_document sorted_document = Parsed(sorted);
  const pugi::xml_node statements = call_document.child("STATEMENTS");
  EXPECT_STREQ(statements.attribute("tim").value(), "2004-05-07 \xEF\xBF\xBD\"<&\xC3\xA9 ");
  const pugi::xml_node first = statements.child("STATEMENT");
  EXPECT_EQ(TextOf(first.child("SQL")),
            "select 'caf\xC3\xA9', '\xEF\xBF\xBD\xEF\xBF\xBD', '\xE2\x82\xAC' from dual ]]> x\n");
  EXPECT_STREQ(first.child("PARSEINCURSOR").attribute("ad").value(), "6b&<\"\xC3\xA9");
  const pugi::xml_node bind = first.child("BIND").child("BINDDATA");
  EXPECT_STREQ(bind.attribute("value").value(), "caf\xC3\xA9 \xEF\xBF\xBD <&\"]]>");
  EXPECT_STREQ(first.child("WAIT").child("WAITDATA").attribute("nam").value(),
               "db \xEF\xBF\xBD"
               "file\xC3\xBF read");
  EXPECT_EQ(TextOf(first.next_sibling("STATEMENT").child("SQL")),
            "selec \xC3\xA9\xEF\xBF\xBD ]]>\n");
  const pugi::xml_node rows = sorted_document.child("STATEMENTS").child("STATEMENT").child("STAT");
  EXPECT_STREQ(rows.first_child().attribute("operation").value(), "");
  EXPECT_STREQ(rows.last_child().attribute("time").value(), "<\"&\xC3\xA9 us");
  EXPECT_NE(report.str().find("select 'caf\xE9'"), std::string::npos);  // text stays as it was
}

TEST(HostileTrace, ActivityLogStaysWellFormed) {
  const ScratchDir dir;
  const std::string log = dir.File("activity.xml");
  std::string error;
  ASSERT_TRUE(support::ActivityLog::Enable(log, &error)) << error;
  exceptions::ExceptionBase(std::string("Ftp\0Manager", 11), "C<lass>", "m\xE9thod",
                            "550 \x1b[1mora_1.trc\x01: \"no\" & ]]>");
  support::ActivityLog::Disable();
  const pugi::xml_document document = Parsed(pelicor_test::ReadWholeFile(log));
  EXPECT_STREQ(document.child("ACTIVITYLOG").child("RECORD").child_value("MESSAGE"),
               "Ftp\xEF\xBF\xBDManager - C<lass> - m\xC3\xA9thod - 550 \xEF\xBF\xBD[1mora_1.trc"
               "\xEF\xBF\xBD: \"no\" & ]]>");
}

}  // namespace
