#include "cli/stream_progress.h"

namespace cli {

bool StreamProgress::OpenLines(const std::string& name, std::uint64_t offset) {
  if (!stream_.OpenLines(name, offset)) return false;
  done_ = 0;
  meter_ = std::make_unique<ProgressMeter>("parsing " + name, size_ ? size_() : 0);
  return true;
}

bool StreamProgress::ReadNextLine(std::string_view* line) {
  if (!stream_.ReadNextLine(line)) return false;
  done_ += line->size();
  if (meter_) meter_->Update(done_);
  return true;
}

bool StreamProgress::ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) {
  return stream_.ReadHead(name, max_bytes, head);
}

void StreamProgress::CloseLines() {
  meter_.reset();
  stream_.CloseLines();
}

}  // namespace cli
