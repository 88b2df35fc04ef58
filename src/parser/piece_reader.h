// Where a parse of a local file takes its lines from: the file as the pieces that reading it
// with a 1024-byte line buffer in text mode gives (see trace_file_reader.h for the rules). One
// reader reads the file in order on the parser's thread; another splits and scans it ahead on
// worker threads. Both hand out the same pieces in the same order, in runs: the parser walks a
// run without a call per line.
#ifndef PELICOR_PARSER_PIECE_READER_H_
#define PELICOR_PARSER_PIECE_READER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "parser/line_scan.h"

namespace parser {

struct Piece {
  const char* data = nullptr;
  std::uint32_t size = 0;
  // False when the piece surely holds no "***" (it then skips the size-limit test).
  bool asterisks = false;
  // The piece's entry among the run's scans (line_scan.h), -1 when it was not scanned ahead.
  std::int32_t scan = -1;

  std::string_view text() const { return std::string_view(data, size); }
  // True when `line` is this piece's text itself, not only equal to it.
  bool Is(std::string_view line) const { return line.data() == data && line.size() == size; }
};

// Pieces that follow one another in the file, with the scans their `scan` fields index.
struct PieceRun {
  const Piece* pieces = nullptr;
  std::size_t count = 0;
  const LineScan* scans = nullptr;
};

class PieceReader {
 public:
  virtual ~PieceReader() = default;

  // The next run of pieces, valid until the next call; false at the end of the file.
  virtual bool NextRun(PieceRun* run) = 0;
  // True once a read has met the end of the file (as feof() after fgets()), for the last run.
  virtual bool AtEnd() const = 0;
  // How far reading has got, in bytes from the file's start (for progress only).
  virtual std::uint64_t ReadPosition() const = 0;
};

}  // namespace parser

#endif  // PELICOR_PARSER_PIECE_READER_H_
