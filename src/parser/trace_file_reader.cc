#include "parser/trace_file_reader.h"

#include <cstring>
#include <fstream>
#include <limits>
#include <utility>

#include "support/os/pending_file.h"

namespace parser {

TraceFileReader::TraceFileReader(std::unique_ptr<std::istream> in, std::size_t block_size)
    : in_(std::move(in)), owned_(block_size < 2 * kLookahead ? 2 * kLookahead : block_size) {
  block_ = owned_.data();
  capacity_ = owned_.size();
}

TraceFileReader::TraceFileReader(char* data, std::size_t size)
    : block_(data),
      capacity_(size),
      in_place_(true),
      end_(size),
      source_done_(true),
      read_position_(size) {
  next_nul_ = NextByte('\0', 0);
  next_asterisks_ = NextAsterisks(0);
}

std::unique_ptr<TraceFileReader> TraceFileReader::Open(const std::string& path) {
  // A FIFO or a device would block the parse, or never end: only regular files are read.
  if (!os::RegularFileProblem(path).empty()) return nullptr;
  auto file = std::make_unique<std::ifstream>(path, std::ios::in | std::ios::binary);
  if (!file->is_open()) return nullptr;
  return std::make_unique<TraceFileReader>(std::move(file));
}

bool TraceFileReader::Seek(std::uint64_t offset) {
  if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max())) {
    return false;
  }
  in_->clear();
  in_->seekg(static_cast<std::streamoff>(offset), std::ios::beg);
  begin_ = end_ = next_nul_ = next_asterisks_ = 0;
  read_position_ = offset;
  source_done_ = false;
  at_end_ = false;
  return !in_->fail();
}

void TraceFileReader::Fill() {
  while (!source_done_ && end_ - begin_ < kLookahead) {
    if (begin_ > 0) {
      std::memmove(block_, block_ + begin_, end_ - begin_);
      end_ -= begin_;
      begin_ = 0;
    }
    in_->read(block_ + end_, static_cast<std::streamsize>(capacity_ - end_));
    const auto got = static_cast<std::size_t>(in_->gcount());
    end_ += got;
    read_position_ += got;
    if (got == 0 || !in_->good()) source_done_ = true;
    next_nul_ = NextByte('\0', begin_);
    next_asterisks_ = NextAsterisks(begin_);
  }
}

std::size_t TraceFileReader::NextByte(char byte, std::size_t from) const {
  const void* found = std::memchr(block_ + from, byte, end_ - from);
  return found == nullptr ? end_
                          : static_cast<std::size_t>(static_cast<const char*>(found) - block_);
}

std::size_t TraceFileReader::NextAsterisks(std::size_t from) const {
  const std::size_t found = std::string_view(block_ + from, end_ - from).find("***");
  return found == std::string_view::npos ? end_ : from + found;
}

std::string_view TraceFileReader::Finish(std::string_view piece, std::size_t piece_end) {
  piece_has_asterisks_ = next_asterisks_ < piece_end;
  if (piece_has_asterisks_) next_asterisks_ = NextAsterisks(piece_end);
  if (next_nul_ >= piece_end) return piece;
  next_nul_ = NextByte('\0', piece_end);
  const void* nul = std::memchr(piece.data(), '\0', piece.size());
  if (nul == nullptr) return piece;
  return piece.substr(0, static_cast<std::size_t>(static_cast<const char*>(nul) - piece.data()));
}

bool TraceFileReader::ReadPiece(std::string_view* piece) {
  Fill();
  const std::size_t available = end_ - begin_;
  if (available == 0) {
    at_end_ = true;
    return false;
  }
  const char* start = block_ + begin_;
  const std::size_t window = available < kPieceLimit ? available : kPieceLimit;
  const auto* newline = static_cast<const char*>(std::memchr(start, '\n', window));
  if (newline != nullptr && (newline == start || newline[-1] != '\r')) {
    const auto length = static_cast<std::size_t>(newline - start) + 1;
    begin_ += length;
    *piece = Finish(std::string_view(start, length), begin_);
    return true;
  }
  if (newline == nullptr && window == kPieceLimit &&
      !(start[kPieceLimit - 1] == '\r' && available > kPieceLimit && start[kPieceLimit] == '\n')) {
    begin_ += kPieceLimit;
    *piece = Finish(std::string_view(start, kPieceLimit), begin_);
    return true;
  }
  *piece = CopyPiece();
  return true;
}

bool TraceFileReader::NextRun(PieceRun* run) {
  std::string_view text;
  if (!ReadPiece(&text)) return false;
  piece_.data = text.data();
  piece_.size = static_cast<std::uint32_t>(text.size());
  piece_.asterisks = piece_has_asterisks_;
  *run = PieceRun{&piece_, 1, nullptr};
  return true;
}

std::string_view TraceFileReader::CopyPiece() {
  std::size_t count = 0;
  const std::size_t first = begin_;
  std::size_t at = begin_;
  while (count < kPieceLimit) {
    if (at == end_) {
      at_end_ = true;  // Fill() left no lookahead, so the file has no more
      break;
    }
    const char c = block_[at];
    if (c == '\r' && at + 1 < end_ && block_[at + 1] == '\n') {
      ++at;
      continue;
    }
    copy_[count++] = c;
    ++at;
    if (c == '\n') break;
  }
  begin_ = at;
  if (!in_place_) return Finish(std::string_view(copy_.data(), count), begin_);
  // The piece is no longer than the bytes it was read from, all of them behind begin_ now.
  std::memcpy(block_ + first, copy_.data(), count);
  return Finish(std::string_view(block_ + first, count), begin_);
}

}  // namespace parser
