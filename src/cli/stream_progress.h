// A line source that shows on a terminal how far a stream has been read: it passes every call
// on to the stream it wraps and counts the bytes of the lines handed out.
#ifndef PELICOR_CLI_STREAM_PROGRESS_H_
#define PELICOR_CLI_STREAM_PROGRESS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "cli/progress.h"
#include "parser/line_source.h"

namespace cli {

class StreamProgress : public parser::LineSource {
 public:
  // `size` is asked once the stream is open (0: unknown, no progress line).
  StreamProgress(parser::LineSource& stream, std::function<std::uint64_t()> size)
      : stream_(stream), size_(std::move(size)) {}

  bool OpenLines(const std::string& name, std::uint64_t offset) override;
  bool ReadNextLine(std::string_view* line) override;
  void CloseLines() override;
  bool ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) override;

 private:
  parser::LineSource& stream_;
  std::function<std::uint64_t()> size_;
  std::unique_ptr<ProgressMeter> meter_;
  std::uint64_t done_ = 0;
};

}  // namespace cli

#endif  // PELICOR_CLI_STREAM_PROGRESS_H_
