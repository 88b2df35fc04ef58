#include "parser/output_sink.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "writer_fixtures.h"

namespace {

using parser::LineEnds;
using parser::OutputSink;

TEST(OutputSink, FileGetsLineEndsTranslatedAcrossBufferRefills) {
  pelicor_test::ScratchDir dir;
  const std::string path = dir.File("out.xml");
  { std::ofstream(path) << std::string(5000000, 'z'); }  // replaced, not appended to
  std::string written;
  std::string expected;
  {
    OutputSink out;
    ASSERT_TRUE(out.OpenFile(path, LineEnds::kCrLf));
    // Lines of many lengths, so that some "\n" fall on the edge of a buffer refill, and one
    // piece larger than the buffer.
    for (int i = 0; i < 40000; ++i) {
      const std::string line = std::string(static_cast<std::size_t>(i % 23), 'a') + "\n";
      out.Write(line);
      expected += std::string(static_cast<std::size_t>(i % 23), 'a') + "\r\n";
    }
    const std::string large = std::string(700000, 'b') + "\n\n";
    out.Write(large);
    expected += std::string(700000, 'b') + "\r\n\r\n";
    out.WriteInt(-42);
    expected += "-42";
    EXPECT_TRUE(out.Close());
  }
  EXPECT_EQ(pelicor_test::ReadWholeFile(path), expected);
}

// Numbers and escapes come from number_format and xml_escape; the sink's own part is CDATA.
TEST(OutputSink, StreamGetsCdataSplitAtEveryEndMarker) {
  std::ostringstream stream;
  {
    OutputSink out(stream);
    out.WriteCdata("x]]>y]]]>z]]");
    out.WriteCdata("");
  }
  EXPECT_EQ(stream.str(), "<![CDATA[x]]]]><![CDATA[>y]]]]]><![CDATA[>z]]]]><![CDATA[]]>");
}

}  // namespace
