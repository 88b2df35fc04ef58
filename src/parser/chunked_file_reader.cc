#include "parser/chunked_file_reader.h"

#include <cstring>
#include <limits>
#include <new>
#include <system_error>
#include <utility>

#include "parser/line_kind.h"

namespace parser {

namespace {

// A chunk's end is searched for in steps of this size; trace lines are short.
constexpr std::size_t kEndSearchStep = 4096;

bool SeekTo(std::ifstream& file, std::uint64_t position) {
  if (position > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max())) {
    return false;
  }
  file.clear();
  file.seekg(static_cast<std::streamoff>(position), std::ios::beg);
  return !file.fail();
}

}  // namespace

ChunkedFileReader::ChunkedFileReader(std::string path, std::uint64_t offset, Options options)
    : path_(std::move(path)),
      options_(options),
      slots_(2 * std::size_t{options.workers} + 1),
      states_(slots_.size(), SlotState::kFree),
      next_start_(offset),
      position_(offset) {
  try {
    for (unsigned i = 0; i < options_.workers; ++i) workers_.emplace_back([this] { Work(); });
  } catch (const std::system_error&) {
    // Fewer workers, or none: what no worker plans is read on the parser's thread.
  }
  if (workers_.empty()) {
    planned_all_ = true;
    tail_start_ = offset;
  }
}

ChunkedFileReader::~ChunkedFileReader() {
  Stop();
  for (std::thread& worker : workers_) worker.join();
}

void ChunkedFileReader::Stop() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  room_.notify_all();
}

// --- Workers --------------------------------------------------------------------------------

void ChunkedFileReader::Work() {
  std::ifstream file(path_, std::ios::in | std::ios::binary);
  for (;;) {
    std::uint64_t index = 0;
    {
      std::unique_lock<std::mutex> lock(mutex_);
      room_.wait(lock,
                 [this] { return stop_ || planned_all_ || next_index_ < taken_ + slots_.size(); });
      if (stop_ || planned_all_) return;
      if (!PlanChunk(file, &index)) {
        ready_.notify_all();
        return;
      }
    }
    Chunk& chunk = slots_[SlotOf(index)];
    FillChunk(file, &chunk);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      states_[SlotOf(index)] = SlotState::kReady;
    }
    ready_.notify_all();
  }
}

bool ChunkedFileReader::PlanChunk(std::ifstream& file, std::uint64_t* index) {
  std::uint64_t end = 0;
  if (!file.is_open() || !FindChunkEnd(file, next_start_, &end)) {
    planned_all_ = true;
    chunk_count_ = next_index_;
    tail_start_ = next_start_;
    return false;
  }
  *index = next_index_++;
  Chunk& chunk = slots_[SlotOf(*index)];
  chunk.start = next_start_;
  chunk.end = end;
  states_[SlotOf(*index)] = SlotState::kFilling;
  next_start_ = end;
  return true;
}

// The end of the first line that ends at or after start + chunk_bytes. False when the file ends
// first: the rest of the file is the tail.
bool ChunkedFileReader::FindChunkEnd(std::ifstream& file, std::uint64_t start,
                                     std::uint64_t* end) const {
  std::uint64_t at = start + options_.chunk_bytes - 1;
  char block[kEndSearchStep];
  if (!SeekTo(file, at)) return false;
  for (;;) {
    file.read(block, sizeof block);
    const auto got = static_cast<std::size_t>(file.gcount());
    if (got == 0) return false;
    const void* newline = std::memchr(block, '\n', got);
    if (newline != nullptr) {
      *end = at + static_cast<std::uint64_t>(static_cast<const char*>(newline) - block) + 1;
      return true;
    }
    at += got;
  }
}

void ChunkedFileReader::FillChunk(std::ifstream& file, Chunk* chunk) const {
  chunk->pieces.clear();
  chunk->scans.clear();
  chunk->failed = false;
  try {
    const auto size = static_cast<std::size_t>(chunk->end - chunk->start);
    chunk->bytes.resize(size);
    if (!SeekTo(file, chunk->start) ||
        !file.read(chunk->bytes.data(), static_cast<std::streamsize>(size))) {
      chunk->failed = true;
      return;
    }
    // The chunk starts where a line starts and ends with a newline: its pieces are the ones a
    // reader of the whole file gives there.
    TraceFileReader splitter(chunk->bytes.data(), size);
    std::string_view piece;
    LineScan scan;
    while (splitter.ReadPiece(&piece)) {
      Piece entry;
      entry.data = piece.data();
      entry.size = static_cast<std::uint32_t>(piece.size());
      entry.asterisks = splitter.PieceHasAsterisks();
      if (ScanAhead(piece, &scan)) {
        entry.scan = static_cast<std::int32_t>(chunk->scans.size());
        chunk->scans.push_back(scan);
      }
      chunk->pieces.push_back(entry);
    }
    MeasureBindBlocks(chunk);
  } catch (const std::bad_alloc&) {
    chunk->failed = true;  // the parser's thread reads it, and meets the shortage itself
  }
}

void ChunkedFileReader::MeasureBindBlocks(Chunk* chunk) {
  const std::size_t count = chunk->pieces.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Piece& piece = chunk->pieces[i];
    if (piece.scan < 0) continue;
    LineScan& scan = chunk->scans[static_cast<std::size_t>(piece.scan)];
    if (scan.kind != LineKind::kBinds) continue;
    const Piece* const following = &chunk->pieces[i] + 1;
    const std::size_t rest = count - i - 1;
    scan.newer_block = rest > 0 && OpensNewerBindBlock(following[0].text());
    scan.block_lines = scan.newer_block ? NewerBindBlockLength(following, rest, &scan.newer_form)
                                        : OlderBindBlockLength(following, rest);
  }
}

// --- The parser's side ----------------------------------------------------------------------

bool ChunkedFileReader::NextChunk() {
  std::unique_lock<std::mutex> lock(mutex_);
  if (holding_) {
    states_[SlotOf(taken_)] = SlotState::kFree;
    ++taken_;
    holding_ = false;
    room_.notify_all();
  }
  const std::size_t slot = SlotOf(taken_);
  ready_.wait(lock, [&] {
    return states_[slot] == SlotState::kReady || (planned_all_ && taken_ >= chunk_count_);
  });
  if (states_[slot] != SlotState::kReady) {
    const std::uint64_t start = tail_start_;
    lock.unlock();
    ReadTailFrom(start);
    return false;
  }
  const Chunk& chunk = slots_[slot];
  if (chunk.failed) {
    lock.unlock();
    Stop();
    ReadTailFrom(chunk.start);
    return false;
  }
  holding_ = true;
  position_ = chunk.end;
  return true;
}

void ChunkedFileReader::ReadTailFrom(std::uint64_t start) {
  tail_ = TraceFileReader::Open(path_);
  if (tail_ == nullptr || !tail_->Seek(start)) {
    tail_.reset();
    tail_failed_ = true;
  }
}

bool ChunkedFileReader::NextRun(PieceRun* run) {
  while (tail_ == nullptr && !tail_failed_) {
    if (!NextChunk()) break;
    const Chunk& chunk = slots_[SlotOf(taken_)];
    if (chunk.pieces.empty()) continue;
    *run = PieceRun{chunk.pieces.data(), chunk.pieces.size(), chunk.scans.data()};
    return true;
  }
  return tail_ != nullptr && tail_->NextRun(run);
}

bool ChunkedFileReader::AtEnd() const {
  if (tail_ != nullptr) return tail_->AtEnd();
  return tail_failed_;
}

std::uint64_t ChunkedFileReader::ReadPosition() const {
  return tail_ != nullptr ? tail_->ReadPosition() : position_;
}

}  // namespace parser
