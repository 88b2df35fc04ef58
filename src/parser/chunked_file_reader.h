// Reads a large local trace with worker threads while the parser works through it: the file is
// cut into chunks that end at a line's end, and each worker reads a chunk, splits it into the
// pieces TraceFileReader gives and scans its PARSE, EXEC, FETCH and WAIT lines (line_scan.h).
// The parser takes the chunks in file order, so it sees exactly the pieces a TraceFileReader
// would hand out, only with most of the scanning already done. The part of the file behind the
// last whole chunk (a short last chunk, a line without an end, what a server appends while we
// read) is read by a TraceFileReader on the parser's thread, so the end of the file and its
// growth behave as they always have. A chunk that cannot be read is read the same way.
//
// Memory stays bounded: at most two chunks per worker, and one the parser holds, are in hand.
// The reader is used by one thread (the parser's); it owns its workers and stops them when it
// is destroyed, also half-way through the file.
#ifndef PELICOR_PARSER_CHUNKED_FILE_READER_H_
#define PELICOR_PARSER_CHUNKED_FILE_READER_H_

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "parser/piece_reader.h"
#include "parser/trace_file_reader.h"

namespace parser {

class ChunkedFileReader : public PieceReader {
 public:
  struct Options {
    unsigned workers = 2;
    // A chunk, its pieces and their scans stay within a processor's second-level cache while
    // the worker fills them (with 2 MB chunks a 300 MB parse took 10 to 40% longer, and its time
    // varied from run to run by as much).
    std::size_t chunk_bytes = std::size_t{512} << 10;
  };

  // Starts reading the regular file `path` from byte `offset` (the caller has checked both).
  ChunkedFileReader(std::string path, std::uint64_t offset, Options options);
  ~ChunkedFileReader() override;
  ChunkedFileReader(const ChunkedFileReader&) = delete;
  ChunkedFileReader& operator=(const ChunkedFileReader&) = delete;

  bool NextRun(PieceRun* run) override;
  bool AtEnd() const override;
  std::uint64_t ReadPosition() const override;

 private:
  struct Chunk {
    std::vector<char> bytes;
    std::vector<Piece> pieces;
    std::vector<LineScan> scans;
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    bool failed = false;  // the bytes could not all be read
  };
  enum class SlotState { kFree, kFilling, kReady };

  // The slot of chunk `index`: chunks go round the slots in turn.
  std::size_t SlotOf(std::uint64_t index) const {
    return static_cast<std::size_t>(index % slots_.size());
  }
  void Work();
  // Plans the next chunk for a worker (under the lock): false when the rest is the tail.
  bool PlanChunk(std::ifstream& file, std::uint64_t* index);
  bool FindChunkEnd(std::ifstream& file, std::uint64_t start, std::uint64_t* end) const;
  void FillChunk(std::ifstream& file, Chunk* chunk) const;
  // Notes how long each BINDS block of the chunk is, where the chunk holds all of it.
  static void MeasureBindBlocks(Chunk* chunk);
  // Gives back the chunk in hand and takes the next one; false when the rest is the tail.
  bool NextChunk();
  void ReadTailFrom(std::uint64_t start);
  void Stop();

  const std::string path_;
  const Options options_;

  std::mutex mutex_;
  std::condition_variable ready_;  // a chunk became ready, or planning ended
  std::condition_variable room_;   // a slot became free, or the reader stops
  std::vector<Chunk> slots_;
  std::vector<SlotState> states_;
  std::uint64_t next_index_ = 0;  // the next chunk to plan, and where it starts
  std::uint64_t next_start_ = 0;
  bool planned_all_ = false;  // the chunks before chunk_count_ are all there will be
  std::uint64_t chunk_count_ = 0;
  std::uint64_t tail_start_ = 0;
  std::uint64_t taken_ = 0;  // chunks the parser has finished with
  bool stop_ = false;
  std::vector<std::thread> workers_;

  // The parser's side.
  bool holding_ = false;  // a chunk is in the parser's hands
  std::uint64_t position_ = 0;
  std::unique_ptr<TraceFileReader> tail_;
  bool tail_failed_ = false;
};

}  // namespace parser

#endif  // PELICOR_PARSER_CHUNKED_FILE_READER_H_
