// The whole-file parses: which documents each xmlType writes and where, in full.
#include <string>

#include "facade_fixture.h"

namespace facade_test {
namespace {

class ParseFileTest : public FacadeTest {};

// The call-by-call document goes to the working directory, the aggregated one next to the trace
// name as given (here the current directory).
TEST_F(ParseFileTest, XmlTypeChoosesTheDocuments) {
  struct Row {
    std::uint16_t xml_type;
    bool calls;
    bool aggregated;
  };
  for (const Row row :
       {Row{0, true, false}, Row{1, false, true}, Row{2, true, true}, Row{3, false, false}}) {
    SCOPED_TRACE(row.xml_type);
    AddTrace(root());
    fs::remove(work() / kXml);
    fs::remove(root() / kXml);
    EXPECT_EQ(service_.ParseFile(kTrace, 0, 0, row.xml_type, &out_, &msg_), 0);
    EXPECT_EQ(msg_, "OK");
    EXPECT_EQ(out_, kXml);
    EXPECT_EQ(fs::exists(work() / kXml), row.calls);
    EXPECT_EQ(fs::exists(root() / kXml), row.aggregated);
    if (row.calls) {
      EXPECT_EQ(ReadWholeFile(work() / kXml), Fixture("orcl_ora_4242.calls.xml"));
    }
    if (row.aggregated) {
      EXPECT_EQ(ReadWholeFile(root() / kXml), Fixture("orcl_ora_4242.aggregated.xml"));
    }
  }
}

TEST_F(ParseFileTest, NameWithoutTrcWritesNothing) {
  AddTrace(root(), "trace.log");
  EXPECT_EQ(service_.ParseFile("trace.log", 0, 0, 2, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Filename does not contain '.trc' !");
  EXPECT_EQ(out_, "");
  EXPECT_TRUE(fs::is_empty(work()));
  EXPECT_FALSE(fs::exists(root() / "trace.xml"));
}

TEST_F(ParseFileTest, MissingFileKeepsTheXmlName) {
  EXPECT_EQ(service_.ParseFile("gone.trc", 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Trace parser failed to open parse file!");
  EXPECT_EQ(out_, "gone.xml");
}

// Sorted on execute cpu the update (0.02 s) comes before the select (0.00 s); the replaced
// options no longer count.
TEST_F(ParseFileTest, AggregatedDocumentFollowsTheLastSortOptions) {
  AddTrace(root());
  ASSERT_EQ(service_.SetSortOption(1, 0, 1, 2, &msg_), 0);
  ASSERT_EQ(service_.SetSortOption(0, 1, 0, 1, &msg_), 0);
  ASSERT_EQ(service_.ParseFile(kTrace, 0, 1, 1, &out_, &msg_), 0);
  const std::string document = ReadWholeFile(root() / kXml);
  EXPECT_LT(document.find("update emp"), document.find("select ename"));
}

TEST_F(ParseFileTest, NfsParseFileReadsTheShareInPlace) {
  AddTrace(udump());
  EXPECT_EQ(service_.NfsParseFile(kTrace, 0, 0, 0, &out_, &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(ReadWholeFile(work() / kXml), Fixture("orcl_ora_4242.calls.xml"));
  EXPECT_FALSE(fs::exists(work() / kTrace));  // nothing copied
}

TEST_F(ParseFileTest, FtpParseFileNamesTheXmlBeforeConnecting) {
  EXPECT_EQ(service_.FtpParseFile(kTrace, 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "hostname/username/password/udump, one of them is empty!");
  EXPECT_EQ(out_, kXml);
  EXPECT_EQ(service_.FtpParseFile("a.log", 0, 0, 0, &out_, &msg_), 1);
  EXPECT_EQ(msg_, "Filename does not contain '.trc' !");
}

}  // namespace
}  // namespace facade_test
