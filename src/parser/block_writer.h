// Writes the blocks of a large document to its file on a thread of its own, so that the system's
// copy of the bytes into the file runs beside the work that makes them (for a call document that
// copy is a third of the time). Blocks are written in the order they are handed over; a few wait
// at most, so memory stays bounded. The first write failure is kept and reported by Finish();
// the blocks behind it are dropped, as the document will be discarded anyway.
//
// The file must not be touched by anyone else until Finish() has returned. One thread hands the
// blocks over; the object owns its thread and stops it when destroyed.
#ifndef PELICOR_PARSER_BLOCK_WRITER_H_
#define PELICOR_PARSER_BLOCK_WRITER_H_

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/os/pending_file.h"

namespace parser {

class BlockWriter {
 public:
  using Block = std::unique_ptr<char[]>;

  BlockWriter(os::PendingFile* file, std::size_t block_size);
  ~BlockWriter();
  BlockWriter(const BlockWriter&) = delete;
  BlockWriter& operator=(const BlockWriter&) = delete;

  // Takes the first `used` bytes of `full` to write and gives back an empty block of the same
  // size to fill next; waits while too many blocks are waiting.
  Block Hand(Block full, std::size_t used);
  // Waits until every block handed over is written: true, or false with the reason of the first
  // failure in *error.
  bool Finish(std::string* error);

 private:
  struct Pending {
    Block block;
    std::size_t used;
  };
  void Work();

  os::PendingFile* file_;
  const std::size_t block_size_;
  std::mutex mutex_;
  std::condition_variable work_;  // a block waits, or the writer is to stop
  std::condition_variable done_;  // a block was written
  std::deque<Pending> queue_;
  std::vector<Block> spare_;
  bool writing_ = false;  // the writer holds a block it took from the queue
  bool stop_ = false;
  bool failed_ = false;
  std::string error_;
  std::thread thread_;
};

}  // namespace parser

#endif  // PELICOR_PARSER_BLOCK_WRITER_H_
