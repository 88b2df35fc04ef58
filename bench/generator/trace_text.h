// Line assembly for the trace generator: text and decimal numbers appended to a buffer that is
// written out in large blocks, with the line end of the chosen platform.
#ifndef PELICOR_BENCH_GENERATOR_TRACE_TEXT_H_
#define PELICOR_BENCH_GENERATOR_TRACE_TEXT_H_

#include <charconv>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace tracegen {

class TraceText {
 public:
  TraceText(std::ostream& out, bool crlf) : out_(out), crlf_(crlf) { buffer_.reserve(kFlushAt); }
  ~TraceText() { Flush(); }
  TraceText(const TraceText&) = delete;
  TraceText& operator=(const TraceText&) = delete;

  TraceText& operator<<(std::string_view text) {
    buffer_.append(text);
    return *this;
  }
  TraceText& operator<<(std::int64_t number) {
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    buffer_.append(digits, static_cast<std::size_t>(result.ptr - digits));
    return *this;
  }
  // Ends the current line.
  void EndLine() {
    buffer_.append(crlf_ ? "\r\n" : "\n");
    ++lines_;
    if (buffer_.size() >= kFlushAt) Flush();
  }
  void Flush() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    written_ += buffer_.size();
    buffer_.clear();
  }
  std::uint64_t bytes() const { return written_ + buffer_.size(); }
  std::uint64_t lines() const { return lines_; }

 private:
  static constexpr std::size_t kFlushAt = std::size_t{1} << 20;
  std::ostream& out_;
  bool crlf_;
  std::string buffer_;
  std::uint64_t written_ = 0;
  std::uint64_t lines_ = 0;
};

}  // namespace tracegen

#endif  // PELICOR_BENCH_GENERATOR_TRACE_TEXT_H_
