#include "parser/block_writer.h"

#include <utility>

namespace parser {

namespace {

// Blocks that may wait for the writer: enough to ride out a slow write, few enough to keep the
// memory of a document written as it is made small.
constexpr std::size_t kMaxWaiting = 3;

}  // namespace

BlockWriter::BlockWriter(os::PendingFile* file, std::size_t block_size)
    : file_(file), block_size_(block_size), thread_([this] { Work(); }) {}

BlockWriter::~BlockWriter() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  work_.notify_one();
  thread_.join();
}

BlockWriter::Block BlockWriter::Hand(Block full, std::size_t used) {
  Block empty;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    done_.wait(lock, [this] { return queue_.size() < kMaxWaiting; });
    queue_.push_back({std::move(full), used});
    if (!spare_.empty()) {
      empty = std::move(spare_.back());
      spare_.pop_back();
    }
  }
  work_.notify_one();
  return empty ? std::move(empty) : Block(new char[block_size_]);
}

bool BlockWriter::Finish(std::string* error) {
  std::unique_lock<std::mutex> lock(mutex_);
  done_.wait(lock, [this] { return queue_.empty() && !writing_; });
  if (failed_ && error != nullptr) *error = error_;
  return !failed_;
}

void BlockWriter::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    work_.wait(lock, [this] { return stop_ || !queue_.empty(); });
    // Stopped before Finish(): the document is being discarded, what waits is not written.
    if (stop_) return;
    Pending next = std::move(queue_.front());
    queue_.pop_front();
    writing_ = true;
    const bool skip = failed_;
    lock.unlock();
    std::string reason;
    const bool written = skip || file_->Write(next.block.get(), next.used, &reason);
    lock.lock();
    writing_ = false;
    if (!written && !failed_) {
      failed_ = true;
      error_ = std::move(reason);
    }
    spare_.push_back(std::move(next.block));
    done_.notify_all();
  }
}

}  // namespace parser
