// The one buffered writer that every document and report of the parser goes through. It collects
// output in one large buffer and hands it on in big blocks, either to a file that it creates (and
// owns) or to a caller's std::ostream.
//
// A file is written under a temporary name beside its target and takes the target's name only
// when Close() finds every byte written (os::PendingFile): a document that fails half-way, or
// whose writer throws before Close(), leaves no half file and keeps the previous one.
//
// Line ends: the writers put "\n". A file is written the way a text-mode file is on its
// platform: on Windows each "\n" leaves as "\r\n", elsewhere as it is. A caller's stream gets the
// bytes unchanged (a text-mode stream such as std::cout does its own translation).
//
// Write errors are not reported while writing; Close() tells whether everything reached its
// target, and ErrorText() why not.
//
// A file that grows past one buffer is written by a thread of its own (block_writer.h) while
// the next buffer fills.
#ifndef PELICOR_PARSER_OUTPUT_SINK_H_
#define PELICOR_PARSER_OUTPUT_SINK_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "parser/block_writer.h"
#include "parser/number_format.h"
#include "support/os/pending_file.h"

namespace parser {

enum class LineEnds {
  kAsWritten,  // "\n" stays "\n"
  kCrLf,       // "\n" leaves as "\r\n"
#ifdef _WIN32
  kNative = kCrLf,
#else
  kNative = kAsWritten,
#endif
};

class OutputSink {
 public:
  // Not connected to anything until OpenFile(); writes before it are dropped.
  OutputSink();
  // Writes to `stream`, which must outlive the sink (or its Close()).
  explicit OutputSink(std::ostream& stream, LineEnds line_ends = LineEnds::kAsWritten);
  OutputSink(const OutputSink&) = delete;
  OutputSink& operator=(const OutputSink&) = delete;
  // Flushes to a stream; a file not closed yet is discarded (its target stays as it was).
  ~OutputSink();

  // Starts the file that will replace `path`; false when it cannot be created (see ErrorText()).
  bool OpenFile(const std::string& path, LineEnds line_ends = LineEnds::kNative);
  // Hands on what is buffered.
  void Flush();
  // Flushes; an owned file is closed and put in place. Returns false when any write, the close
  // or the rename failed (a file is then discarded).
  bool Close();
  // The system's reason for the first failure ("No space left on device"); empty when none.
  const std::string& ErrorText() const { return error_; }

  void Write(std::string_view text) {
    if (text.size() <= kCapacity - used_) {
      if (text.empty()) return;  // an empty view may carry no pointer at all
      std::memcpy(buffer_.get() + used_, text.data(), text.size());
      used_ += text.size();
    } else {
      WriteLarge(text);
    }
  }
  void Put(char c) {
    if (used_ == kCapacity) Spill();
    buffer_[used_++] = c;
  }
  // %d and %I64d.
  void WriteInt(std::int64_t value) { Commit(FormatDecimal(Room(kMaxDecimalChars), value)); }
  void WriteUnsigned(std::uint64_t value) { Commit(FormatDecimal(Room(kMaxDecimalChars), value)); }
  // %.2f.
  void WriteFixed2(double value) { Commit(FormatFixed2(Room(kMaxFixed2Chars), value)); }
  // "%<width>I64d" and "%<width>.2lf".
  void WriteInt(std::int64_t value, std::size_t width);
  void WriteFixed2(double value, std::size_t width);

  // `text` with '&', '<', '>' and '"' replaced by their entities, each '&' once; bytes that are
  // not UTF-8 and forbidden control characters made well-formed (support/xml_text.h).
  void WriteXmlEscaped(std::string_view text);
  // `text` inside a CDATA section, made well-formed the same way. A "]]>" in it would end the
  // section early, so the section is closed after its "]]" and a new one opened for the ">": the
  // text reads back unchanged.
  void WriteCdata(std::string_view text);

 private:
  static constexpr std::size_t kCapacity = std::size_t{1} << 20;

  // At least `size` free bytes at the end of the buffer.
  char* Room(std::size_t size) {
    if (kCapacity - used_ < size) Spill();
    return buffer_.get() + used_;
  }
  void Commit(char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }
  // Hands on a buffer that has filled: from the first one on, a file's buffers go to the writer
  // thread.
  void Spill();
  void WriteLarge(std::string_view text);
  void Deliver(std::string_view bytes);
  void DeliverCrLf(std::string_view bytes);

  void Fail(std::string reason);

  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::string translated_;  // a block with "\r\n" line ends, reused
  os::PendingFile file_;
  std::unique_ptr<BlockWriter> writer_;  // writes file_ once a buffer has filled
  std::ostream* stream_ = nullptr;
  LineEnds line_ends_ = LineEnds::kAsWritten;
  bool failed_ = false;
  std::string error_;
};

}  // namespace parser

#endif  // PELICOR_PARSER_OUTPUT_SINK_H_
