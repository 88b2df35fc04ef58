// Reads a local trace file in large blocks and hands it out as the lines that reading it with a
// 1024-byte line buffer in text mode gives:
//   - a line longer than 1023 bytes arrives in pieces of 1023 bytes, the last piece holding the
//     newline (a piece may also be the newline alone);
//   - a carriage return just before a newline is dropped (traces copied from Windows), and only
//     the characters that remain count towards the 1023;
//   - the last line of a file without a final newline arrives without one.
// Pieces are views into the reader's block (or, for CR-LF lines, into a small copy), valid until
// the next call, and end at their first NUL byte, as the line buffer's C string does. Not
// thread-safe; one reader per open file. A reader can also split bytes already in memory (a
// chunk of a file that starts at a line's start), in place.
#ifndef PELICOR_PARSER_TRACE_FILE_READER_H_
#define PELICOR_PARSER_TRACE_FILE_READER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "parser/piece_reader.h"

namespace parser {

class TraceFileReader : public PieceReader {
 public:
  static constexpr std::size_t kPieceLimit = 1023;
  static constexpr std::size_t kDefaultBlockSize = std::size_t{1} << 20;

  // Reads from `in` (positioned where reading starts).
  explicit TraceFileReader(std::unique_ptr<std::istream> in,
                           std::size_t block_size = kDefaultBlockSize);

  // Splits the `size` bytes at `data` (not owned; they must outlive the reader). Pieces that lose
  // a CR are written back over the bytes they came from, so every piece views `data`.
  TraceFileReader(char* data, std::size_t size);

  // Opens `path` for reading; nothing when it cannot be opened or is not a regular file (a
  // directory, a FIFO, a device).
  static std::unique_ptr<TraceFileReader> Open(const std::string& path);

  // Moves to byte `offset` from the start of the file; false when the stream refuses.
  bool Seek(std::uint64_t offset);

  // The next piece in *piece; false at the end of the file.
  bool ReadPiece(std::string_view* piece);
  // The next piece as a run of one.
  bool NextRun(PieceRun* run) override;

  // False when the last piece surely holds no "***", which the size-limit line needs: most lines
  // then skip that test. The search runs once per block, not once per line ("SQL*Net" waits
  // put single asterisks on many lines).
  bool PieceHasAsterisks() const { return piece_has_asterisks_; }

  // True once a read has met the end of the file (as feof() after fgets()): after the last
  // piece when that piece has no newline, else only after ReadPiece() has answered false.
  bool AtEnd() const override { return at_end_; }

  // Where the next block read starts, in bytes from the file's start: how far reading has got.
  std::uint64_t ReadPosition() const override { return read_position_; }

 private:
  // Makes sure the block holds at least kLookahead bytes past begin_, or all that is left.
  void Fill();
  // The general case: copies the piece, dropping a CR before the newline.
  std::string_view CopyPiece();
  // Position of the first `byte` (of "***") in block_ from `from` on, end_ when there is none.
  std::size_t NextByte(char byte, std::size_t from) const;
  std::size_t NextAsterisks(std::size_t from) const;
  // Cuts the piece that ends at block_[piece_end] at its first NUL and notes its asterisks.
  std::string_view Finish(std::string_view piece, std::size_t piece_end);

  static constexpr std::size_t kLookahead = kPieceLimit + 2;

  std::unique_ptr<std::istream> in_;
  std::vector<char> owned_;  // the block of a file; empty over bytes in memory
  char* block_ = nullptr;
  std::size_t capacity_ = 0;
  bool in_place_ = false;  // over bytes in memory: copied pieces go back into them
  std::size_t begin_ = 0;  // first unread byte in block_
  std::size_t end_ = 0;    // end of the bytes read into block_
  bool source_done_ = false;
  bool at_end_ = false;
  std::size_t next_nul_ = 0;        // first NUL at or after begin_, end_ when none
  std::size_t next_asterisks_ = 0;  // likewise for "***"
  bool piece_has_asterisks_ = false;
  std::uint64_t read_position_ = 0;
  std::array<char, kPieceLimit> copy_{};
  Piece piece_;  // the run of NextRun()
};

}  // namespace parser

#endif  // PELICOR_PARSER_TRACE_FILE_READER_H_
