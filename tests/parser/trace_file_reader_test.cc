// The block reader must hand out exactly the pieces (and end-of-file states) that fgets with a
// 1024-byte buffer gives on the same file, whatever the block size.
#include "parser/trace_file_reader.h"

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

std::string Repeat(char c, std::size_t n) {
  return std::string(n, c);
}

TEST(TraceFileReader, PiecesMatchFgetsWhateverTheBlockSize) {
  std::string generated;
  for (std::size_t n = 0; generated.size() < 300000; n = (n * 7 + 13) % 2600) {
    generated += Repeat(static_cast<char>('a' + n % 26), n) + "\n";
  }
  const std::string texts[] = {
      "",
      "a\nb\n\nc",
      Repeat('x', 1022) + "\n",
      Repeat('x', 1023) + "\n",
      Repeat('x', 1023),
      Repeat('x', 1024) + "\n" + Repeat('y', 3000),
      Repeat('z', 2046) + "\nend\n",
      std::string("nul\0inside\n\0\0a\nb\n", 17),  // a piece ends at its first NUL
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
  const std::vector<Piece> long_line = {{Repeat('x', 1022) + "\n", false}};
  EXPECT_EQ(WithReader(Repeat('x', 1022) + "\r\n", 1 << 20), long_line);
  EXPECT_EQ(WithReader(Repeat('x', 1022) + "\r\n", 1), long_line);
  const std::vector<Piece> split = {{Repeat('x', 1023), false}, {"\n", false}};
  EXPECT_EQ(WithReader(Repeat('x', 1023) + "\r\n", 1 << 20), split);
}

// Traces are read in binary mode on every platform: on Windows a Ctrl-Z (text mode's end of
// file) is an ordinary byte and the lines after it are read, and the CR of a CR LF line is
// dropped by the reader, not by the C run-time.
TEST(TraceFileReader, FileKeepsTheLinesAfterACtrlZ) {
  const TempFile file("WAIT #1: nam='db file sequential read' ela= 13\r\n\x1a\r\nEXEC #1:c=0\r\n");
  auto reader = parser::TraceFileReader::Open(file.path());
  ASSERT_NE(reader, nullptr);
  const std::vector<Piece> expected = {{"WAIT #1: nam='db file sequential read' ela= 13\n", false},
                                       {"\x1a\n", false},
                                       {"EXEC #1:c=0\n", false}};
  EXPECT_EQ(WithReader(*reader), expected);
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
