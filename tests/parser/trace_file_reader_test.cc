// The block reader must hand out exactly the pieces (and end-of-file states) that fgets with a
// 1024-byte buffer gives on the same file, whatever the block size; the reader that splits and
// scans a file ahead on worker threads must hand out the same pieces, whatever its chunks.
#include "parser/trace_file_reader.h"

#include "parser/chunked_file_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "../support/scratch.h"

namespace {

using pelicor_test::TempFile;

struct Piece {
  std::string text;
  bool at_end;
  bool operator==(const Piece& other) const { return text == other.text && at_end == other.at_end; }
};

std::vector<Piece> WithFgets(const std::string& path) {
  std::vector<Piece> pieces;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  char buffer[1024];
  while (std::fgets(buffer, sizeof buffer, file) != nullptr) {
    pieces.push_back({buffer, std::feof(file) != 0});
  }
  std::fclose(file);
  return pieces;
}

std::vector<Piece> WithReader(parser::TraceFileReader& reader) {
  std::vector<Piece> pieces;
  std::string_view piece;
  while (reader.ReadPiece(&piece)) pieces.push_back({std::string(piece), reader.AtEnd()});
  EXPECT_TRUE(reader.AtEnd());
  return pieces;
}

std::vector<Piece> WithReader(const std::string& text, std::size_t block_size) {
  parser::TraceFileReader reader(std::make_unique<std::istringstream>(text), block_size);
  return WithReader(reader);
}

std::string Text(const parser::LineScan& scan) {
  std::ostringstream text;
  text << static_cast<int>(scan.kind) << scan.newer_form << ' ';
  if (scan.kind == parser::LineKind::kWait) {
    const parser::WaitRecord& w = scan.fields.wait;
    text << w.cursor << w.nam << w.ela << ' ' << w.p1 << ' ' << w.p2 << ' ' << w.p3 << ' ' << w.tim;
  } else {
    const parser::CallRecord& c = scan.fields.call;
    text << c.cursor << ' ' << c.c << ' ' << c.e << ' ' << c.p << ' ' << c.cr << ' ' << c.cu << ' '
         << c.mis << ' ' << c.r << ' ' << c.dep << ' ' << c.og << ' ' << c.tim;
  }
  return text.str();
}

// The pieces of a whole-file reader, with each piece's asterisk flag as the last character of
// its text ('*' or '-'), so that both readers' answers are compared at once.
std::vector<Piece> Runs(parser::PieceReader& reader, std::size_t* scanned_ahead = nullptr) {
  std::vector<Piece> pieces;
  parser::PieceRun run;
  while (reader.NextRun(&run)) {
    for (std::size_t i = 0; i < run.count; ++i) {
      const parser::Piece& piece = run.pieces[i];
      pieces.push_back({std::string(piece.text()) + (piece.asterisks ? '*' : '-'),
                        i + 1 == run.count && reader.AtEnd()});
      // What was scanned ahead is what scanning the piece gives.
      parser::LineScan scan;
      if (piece.scan >= 0) {
        EXPECT_TRUE(parser::ScanAhead(piece.text(), &scan)) << piece.text();
        EXPECT_EQ(Text(run.scans[piece.scan]), Text(scan));
        if (scanned_ahead != nullptr) ++*scanned_ahead;
      }
    }
  }
  EXPECT_TRUE(reader.AtEnd());
  return pieces;
}

TEST(TraceFileReader, PiecesMatchFgetsWhateverTheBlockSize) {
  std::string generated;
  for (std::size_t n = 0; generated.size() < 300000; n = (n * 7 + 13) % 2600) {
    generated += std::string(n, static_cast<char>('a' + n % 26)) + "\n";
  }
  const std::string texts[] = {
      "",
      "a\nb\n\nc",
      std::string(1022, 'x') + "\n",
      std::string(1023, 'x') + "\n",
      std::string(1023, 'x'),
      std::string(1024, 'x') + "\n" + std::string(3000, 'y'),
      std::string(2046, 'z') + "\nend\n",
      std::string("nul\0inside\n\0\0a\nb\n", 17),  // a piece ends at its first NUL
      // Traces are read in binary mode on every platform: on Windows a Ctrl-Z (text mode's end
      // of file) is an ordinary byte and the lines after it are read.
      "WAIT #1: nam='db file sequential read' ela= 13\n\x1a\nEXEC #1:c=0\n",
      generated,
  };
  for (const std::string& text : texts) {
    const TempFile file(text);
    const std::vector<Piece> expected = WithFgets(file.path());
    auto reader = parser::TraceFileReader::Open(file.path());
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(WithReader(*reader), expected) << text.substr(0, 40);
    // Small blocks put line ends and piece ends across block borders.
    for (const std::size_t block_size : {std::size_t{1}, std::size_t{4096}, std::size_t{5000}}) {
      EXPECT_EQ(WithReader(text, block_size), expected) << block_size << text.substr(0, 40);
    }
  }
}

TEST(TraceFileReader, DropsACarriageReturnBeforeTheNewlineOnly) {
  const std::vector<Piece> expected = {{"a\n", false}, {"b\rc\n", false}, {"\r", true}};
  EXPECT_EQ(WithReader("a\r\nb\rc\r\n\r", 1 << 20), expected);
  // The CR does not count towards the 1023 bytes of a piece.
  const std::vector<Piece> long_line = {{std::string(1022, 'x') + "\n", false}};
  EXPECT_EQ(WithReader(std::string(1022, 'x') + "\r\n", 1 << 20), long_line);
  EXPECT_EQ(WithReader(std::string(1022, 'x') + "\r\n", 1), long_line);
  const std::vector<Piece> split = {{std::string(1023, 'x'), false}, {"\n", false}};
  EXPECT_EQ(WithReader(std::string(1023, 'x') + "\r\n", 1 << 20), split);
}

TEST(TraceFileReader, TellsWhichPiecesMayHoldThreeAsterisks) {
  const std::string text = "a\nSQL*Net\n***\nb\n****\n**\n*" + std::string(1021, 'x') + "***\n";
  for (const std::size_t block_size : {std::size_t{1}, std::size_t{1} << 20}) {
    parser::TraceFileReader reader(std::make_unique<std::istringstream>(text), block_size);
    std::string_view piece;
    std::vector<bool> flags;
    while (reader.ReadPiece(&piece)) flags.push_back(reader.PieceHasAsterisks());
    // A "***" that only begins in a piece marks it too: the full test then says no.
    EXPECT_EQ(flags, (std::vector<bool>{false, false, true, false, true, false, true, false}));
  }
}

}  // namespace

namespace {

TEST(ChunkedFileReader, GivesThePiecesOfTheWholeFileReaderWhateverItsChunks) {
  std::string lines;
  for (std::size_t n = 0; lines.size() < 60000; n = (n * 7 + 13) % 1500) {
    lines += "EXEC #" + std::to_string(n) + ":c=0,e=" + std::to_string(n * 3) +
             ",p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1083929217634352\n";
    lines += "WAIT #1: nam='SQL*Net message from client' ela= " + std::to_string(n) +
             " driver id=1413697536 #bytes=1 p3=0 obj#=-1 tim=5793511831927\r\n";
    lines += std::string(n, static_cast<char>('a' + n % 26)) + "***\n";
  }
  const std::string texts[] = {
      "",
      "FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1\nno end",
      std::string(1023, 'x') + "\r\n" + std::string(1022, 'y') + "\r\n\r\n",
      std::string(5000, 'z') + "\nend\n",
      std::string("WAIT #1: nam='x' ela= 1\0 p1=2\nPARSE #1:c=\0\n", 37),
      lines,
  };
  for (const std::string& text : texts) {
    const TempFile file(text);
    for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{777}}) {
      auto whole = parser::TraceFileReader::Open(file.path());
      ASSERT_NE(whole, nullptr);
      ASSERT_TRUE(whole->Seek(offset));
      const std::vector<Piece> expected = Runs(*whole);
      for (const std::size_t chunk_bytes : {std::size_t{1}, std::size_t{700}, std::size_t{8192}}) {
        for (const unsigned workers : {0u, 1u, 3u}) {
          parser::ChunkedFileReader reader(file.path(), offset, {workers, chunk_bytes});
          std::size_t scanned_ahead = 0;
          EXPECT_EQ(Runs(reader, &scanned_ahead), expected)
              << text.substr(0, 30) << " from " << offset << ", chunks of " << chunk_bytes
              << ", workers " << workers;
          EXPECT_TRUE(text != lines || workers == 0 || scanned_ahead > 100u);
        }
      }
    }
  }
}

// A parse that stops half-way (the size-limit line) destroys the reader with chunks in flight.
TEST(ChunkedFileReader, StopsItsWorkersWhenLeftHalfWay) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "STAT #1 id=1 cnt=1 pid=0 pos=1 obj=0 op='X'\n";
  const TempFile file(text);
  for (int run = 0; run < 20; ++run) {
    parser::ChunkedFileReader reader(file.path(), 0, {2, 512});
    parser::PieceRun first;
    ASSERT_TRUE(reader.NextRun(&first));
  }
}

}  // namespace
