#include "parser/output_sink.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "writer_fixtures.h"

namespace {

using parser::LineEnds;
using parser::OutputSink;

// Files of several buffers: with "\r\n" line ends they are translated as they go out, with
// "\n" they are written by the sink's writer thread while the next buffer fills.
TEST(OutputSink, FileOfManyBuffersGetsEveryByteInOrder) {
  for (const LineEnds line_ends : {LineEnds::kCrLf, LineEnds::kAsWritten}) {
    const std::string end = line_ends == LineEnds::kCrLf ? "\r\n" : "\n";
    pelicor_test::ScratchDir dir;
    const std::string path = dir.File("out.xml");
    { std::ofstream(path) << std::string(5000000, 'z'); }  // replaced, not appended to
    std::string expected;
    {
      OutputSink out;
      ASSERT_TRUE(out.OpenFile(path, line_ends));
      // Lines of many lengths, so that some "\n" fall on the edge of a buffer refill, and a
      // piece larger than the buffer between them.
      for (int i = 0; i < 300000; ++i) {
        const std::string text(static_cast<std::size_t>(i % 23), static_cast<char>('a' + i % 26));
        out.Write(text + "\n");
        expected += text + end;
        if (i == 150000) {
          out.Write(std::string(2500000, 'b') + "\n\n");
          expected += std::string(2500000, 'b') + end + end;
        }
      }
      out.WriteInt(-42);
      expected += "-42";
      EXPECT_TRUE(out.Close());
    }
    EXPECT_EQ(pelicor_test::ReadWholeFile(path), expected);
  }
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
