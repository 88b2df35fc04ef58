// A document takes its name only when it is complete: full disks, writers that throw half-way
// and links at the target.
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "../support/file_size_limit.h"
#include "../support/raised.h"
#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/output_sink.h"
#include "writer_fixtures.h"

namespace {

namespace fs = std::filesystem;
using parser::DocumentContext;
using parser::OutputSink;
using pelicor_test::ReadWholeFile;
using pelicor_test::ScratchDir;
using pelicor_test::WriteWholeFile;

// The names in `dir`, so that a temporary file left behind shows.
std::string Listing(const fs::path& dir) {
  std::string names;
  for (const auto& entry : fs::directory_iterator(dir)) {
    names += (names.empty() ? "" : " ") + entry.path().filename().string();
  }
  return names;
}

constexpr const char* kFailed = "TraceParser|CTraceParser::CreateXML|";

TEST(DocumentFile, FullDiskRaisesNamingTheFileAndKeepsThePreviousDocument) {
  ScratchDir dir;
  WriteWholeFile(dir.path() / "t.xml", "previous");
  parser::StatementList closed = writer_test::SampleStatements();
  DocumentContext context;
  context.statement_id = "emp";
  const std::string path = dir.File("t.xml");
  const std::string too_large =
      "|Trace parser failed to write the output XML file " + path + ": File too large";
  {
    const pelicor_test::FileSizeLimit full(100);
    EXPECT_EQ(
        pelicor_test::Raised([&] { parser::WriteCallXml(closed, context, dir.File("t.trc")); }),
        kFailed + std::string("CreateXML") + too_large);
    EXPECT_EQ(
        pelicor_test::Raised([&] { parser::WriteTkprofXml(closed, context, dir.File("t.trc")); }),
        kFailed + std::string("CreateTkprofXML") + too_large);
    EXPECT_EQ(
        pelicor_test::Raised([&] { parser::WriteSortedXml(closed, context, dir.File("t.trc")); }),
        kFailed + std::string("CreateXML") + too_large);
  }
  EXPECT_EQ(ReadWholeFile(path), "previous");
  EXPECT_EQ(Listing(dir.path()), "t.xml");
}

TEST(DocumentFile, DeviceTargetIsWrittenInPlaceAndItsFailureReported) {
  OutputSink out;
  ASSERT_TRUE(out.OpenFile("/dev/full"));
  out.Write("<STATEMENTS>\n");
  EXPECT_FALSE(out.Close());
  EXPECT_EQ(out.ErrorText(), "No space left on device");
  ASSERT_TRUE(out.OpenFile("/dev/null"));
  out.Write("<STATEMENTS>\n");
  EXPECT_TRUE(out.Close());
}

TEST(DocumentFile, WriterThatThrowsHalfWayLeavesNothing) {
  ScratchDir dir;
  EXPECT_THROW(
      {
        OutputSink out;
        ASSERT_TRUE(out.OpenFile(dir.File("t.xml")));
        out.Write(std::string(1 << 20, 'x'));  // more than the buffer: some reached the file
        throw std::runtime_error("parse failed");
      },
      std::runtime_error);
  EXPECT_EQ(Listing(dir.path()), "");
}

TEST(DocumentFile, ReplacesALinkNotTheFileItPointsTo) {
  ScratchDir dir;
  WriteWholeFile(dir.path() / "victim", "keep");
  fs::create_symlink(dir.path() / "victim", dir.path() / "t.xml");
  OutputSink out;
  ASSERT_TRUE(out.OpenFile(dir.File("t.xml")));
  out.Write("<STATEMENTS/>");
  ASSERT_TRUE(out.Close());
  EXPECT_EQ(ReadWholeFile(dir.path() / "victim"), "keep");
  EXPECT_FALSE(fs::is_symlink(dir.path() / "t.xml"));
  EXPECT_EQ(ReadWholeFile(dir.path() / "t.xml"), "<STATEMENTS/>");
}

TEST(DocumentFile, DirectoryAsTargetCannotBeCreated) {
  ScratchDir dir;
  fs::create_directory(dir.path() / "t.xml");
  parser::StatementList closed = writer_test::SampleStatements();
  EXPECT_EQ(pelicor_test::Raised(
                [&] { parser::WriteCallXml(closed, DocumentContext{}, dir.File("t.trc")); }),
            kFailed + std::string("CreateXML|Trace parser failed to create output XML file!"));
  EXPECT_TRUE(fs::is_directory(dir.path() / "t.xml"));
}

}  // namespace
