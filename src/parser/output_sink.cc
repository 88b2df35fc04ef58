#include "parser/output_sink.h"

#include <ostream>

#include "support/xml_escape.h"

namespace parser {

void OutputSink::FileCloser::operator()(std::FILE* file) const {
  std::fclose(file);
}

OutputSink::OutputSink() : buffer_(new char[kCapacity]) {}

OutputSink::OutputSink(std::ostream& stream, LineEnds line_ends)
    : buffer_(new char[kCapacity]), stream_(&stream), line_ends_(line_ends) {}

OutputSink::~OutputSink() {
  Flush();
}

bool OutputSink::OpenFile(const std::string& path, LineEnds line_ends) {
  Close();
  // Binary mode: the line ends are translated here, the same way on every platform's build.
  file_.reset(std::fopen(path.c_str(), "wb"));
  stream_ = nullptr;
  line_ends_ = line_ends;
  failed_ = false;
  return file_ != nullptr;
}

void OutputSink::Flush() {
  if (used_ == 0) return;
  const std::string_view bytes(buffer_.get(), used_);
  used_ = 0;
  if (line_ends_ == LineEnds::kCrLf) {
    DeliverCrLf(bytes);
  } else {
    Deliver(bytes);
  }
  if (stream_ != nullptr) stream_->flush();
}

bool OutputSink::Close() {
  Flush();
  if (stream_ != nullptr && !stream_->good()) failed_ = true;
  if (file_ != nullptr && std::fclose(file_.release()) != 0) failed_ = true;
  const bool ok = !failed_;
  failed_ = false;
  return ok;
}

void OutputSink::WriteLarge(std::string_view text) {
  Flush();
  if (text.size() < kCapacity) {
    Write(text);
  } else if (line_ends_ == LineEnds::kCrLf) {
    DeliverCrLf(text);
  } else {
    Deliver(text);
  }
}

void OutputSink::Deliver(std::string_view bytes) {
  if (file_ != nullptr) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) failed_ = true;
  } else if (stream_ != nullptr) {
    stream_->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
}

void OutputSink::DeliverCrLf(std::string_view bytes) {
  for (std::size_t pos = 0; pos < bytes.size();) {
    const std::size_t lf = bytes.find('\n', pos);
    if (lf == std::string_view::npos) {
      Deliver(bytes.substr(pos));
      return;
    }
    Deliver(bytes.substr(pos, lf - pos));
    Deliver("\r\n");
    pos = lf + 1;
  }
}

void OutputSink::WriteInt(std::int64_t value, std::size_t width) {
  char* begin = Room(kMaxDecimalChars + width);
  Commit(AlignRight(begin, FormatDecimal(begin, value), width));
}

void OutputSink::WriteFixed2(double value, std::size_t width) {
  char* begin = Room(kMaxFixed2Chars + width);
  Commit(AlignRight(begin, FormatFixed2(begin, value), width));
}

void OutputSink::WriteXmlEscaped(std::string_view text) {
  // Most texts (addresses, bind values, event names) have nothing to replace.
  if (text.find_first_of("&<>\"") == std::string_view::npos) {
    Write(text);
    return;
  }
  escape_scratch_.clear();
  support::AppendXmlEscaped(&escape_scratch_, text);
  Write(escape_scratch_);
}

void OutputSink::WriteCdata(std::string_view text) {
  static constexpr std::string_view kEnd = "]]>";
  Write("<![CDATA[");
  for (std::size_t pos = 0;;) {
    const std::size_t end = text.find(kEnd, pos);
    if (end == std::string_view::npos) {
      Write(text.substr(pos));
      break;
    }
    // "a]]>b" -> "<![CDATA[a]]]]><![CDATA[>b]]>"
    Write(text.substr(pos, end + 2 - pos));
    Write("]]><![CDATA[");
    pos = end + 2;
  }
  Write("]]>");
}

}  // namespace parser
