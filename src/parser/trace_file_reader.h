// Reads a local trace file in large blocks and hands it out as the lines that reading it with a
// 1024-byte line buffer in text mode gives:
//   - a line longer than 1023 bytes arrives in pieces of 1023 bytes, the last piece holding the
//     newline (a piece may also be the newline alone);
//   - a carriage return just before a newline is dropped (traces copied from Windows), and only
//     the characters that remain count towards the 1023;
//   - the last line of a file without a final newline arrives without one.
// Pieces are views into the reader's block (or, for CR-LF lines, into a small copy), valid until
// the next call. Not thread-safe; one reader per open file.
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

namespace parser {

class TraceFileReader {
 public:
  static constexpr std::size_t kPieceLimit = 1023;
  static constexpr std::size_t kDefaultBlockSize = std::size_t{1} << 20;

  // Reads from `in` (positioned where reading starts).
  explicit TraceFileReader(std::unique_ptr<std::istream> in,
                           std::size_t block_size = kDefaultBlockSize);

  // Opens `path` for reading; nothing when it cannot be opened or is a directory.
  static std::unique_ptr<TraceFileReader> Open(const std::string& path);

  // Moves to byte `offset` from the start of the file; false when the stream refuses.
  bool Seek(std::uint64_t offset);

  // The next piece in *piece; false at the end of the file.
  bool ReadPiece(std::string_view* piece);

  // True once a read has met the end of the file (as feof() after fgets()): after the last
  // piece when that piece has no newline, else only after ReadPiece() has answered false.
  bool AtEnd() const { return at_end_; }

 private:
  // Makes sure the block holds at least kLookahead bytes past begin_, or all that is left.
  void Fill();
  // The general case: copies the piece, dropping a CR before the newline.
  std::string_view CopyPiece();

  static constexpr std::size_t kLookahead = kPieceLimit + 2;

  std::unique_ptr<std::istream> in_;
  std::vector<char> block_;
  std::size_t begin_ = 0;  // first unread byte in block_
  std::size_t end_ = 0;    // end of the bytes read into block_
  bool source_done_ = false;
  bool at_end_ = false;
  std::array<char, kPieceLimit> copy_{};
};

}  // namespace parser

#endif  // PELICOR_PARSER_TRACE_FILE_READER_H_
