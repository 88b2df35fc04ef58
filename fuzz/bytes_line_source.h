// The fuzzer's input as the lines of a stream, for the parser's stream entry points.
#ifndef PELICOR_FUZZ_BYTES_LINE_SOURCE_H_
#define PELICOR_FUZZ_BYTES_LINE_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "parser/line_source.h"

namespace fuzz {

// Hands out `bytes` line by line, each with its line feed; the last line may have none.
class BytesLineSource : public parser::LineSource {
 public:
  explicit BytesLineSource(std::string_view bytes) : bytes_(bytes) {}
  bool OpenLines(const std::string&, std::uint64_t) override { return true; }
  bool ReadNextLine(std::string_view* line) override {
    if (bytes_.empty()) return false;
    const std::size_t end = bytes_.find('\n');
    const std::size_t length = end == std::string_view::npos ? bytes_.size() : end + 1;
    *line = bytes_.substr(0, length);
    bytes_.remove_prefix(length);
    return true;
  }
  void CloseLines() override {}

 private:
  std::string_view bytes_;
};

}  // namespace fuzz

#endif  // PELICOR_FUZZ_BYTES_LINE_SOURCE_H_
