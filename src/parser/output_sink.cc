#include "parser/output_sink.h"

#include <ostream>
#include <utility>

#include "support/xml_text.h"

namespace parser {

OutputSink::OutputSink() : buffer_(new char[kCapacity]) {}

OutputSink::OutputSink(std::ostream& stream, LineEnds line_ends)
    : buffer_(new char[kCapacity]), stream_(&stream), line_ends_(line_ends) {}

OutputSink::~OutputSink() {
  if (stream_ != nullptr) Flush();
}

bool OutputSink::OpenFile(const std::string& path, LineEnds line_ends) {
  Close();
  writer_.reset();
  used_ = 0;
  stream_ = nullptr;
  line_ends_ = line_ends;
  failed_ = false;
  error_.clear();
  // Binary: the line ends are translated here, the same way on every platform's build.
  if (file_.Create(path, &error_)) return true;
  failed_ = true;
  return false;
}

void OutputSink::Fail(std::string reason) {
  if (failed_) return;
  failed_ = true;
  error_ = std::move(reason);
}

void OutputSink::Spill() {
  if (!writer_ && file_.is_open() && line_ends_ == LineEnds::kAsWritten && !failed_) {
    writer_ = std::make_unique<BlockWriter>(&file_, kCapacity);
  }
  Flush();
}

void OutputSink::Flush() {
  if (used_ == 0) return;
  if (writer_) {
    buffer_ = writer_->Hand(std::move(buffer_), used_);
    used_ = 0;
    return;
  }
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
  if (writer_) {
    std::string reason;
    if (!writer_->Finish(&reason)) Fail(std::move(reason));
    writer_.reset();
  }
  if (stream_ != nullptr && !stream_->good()) Fail("the stream refused the output");
  if (file_.is_open()) {
    std::string reason;
    if (failed_) {
      file_.Discard();  // never put a half document in place
    } else if (!file_.Commit(&reason)) {
      Fail(std::move(reason));
    }
  }
  return !failed_;
}

void OutputSink::WriteLarge(std::string_view text) {
  Spill();
  if (text.size() < kCapacity) {
    Write(text);
  } else if (writer_) {  // behind the blocks already handed over
    for (; text.size() >= kCapacity; text.remove_prefix(kCapacity)) {
      std::memcpy(buffer_.get(), text.data(), kCapacity);
      used_ = kCapacity;
      Spill();
    }
    Write(text);
  } else if (line_ends_ == LineEnds::kCrLf) {
    DeliverCrLf(text);
  } else {
    Deliver(text);
  }
}

void OutputSink::Deliver(std::string_view bytes) {
  if (file_.is_open()) {
    std::string reason;
    // After a failure the rest is dropped: the file will be discarded anyway.
    if (!failed_ && !file_.Write(bytes.data(), bytes.size(), &reason)) Fail(std::move(reason));
  } else if (stream_ != nullptr) {
    stream_->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
}

// Translated into one block first: the file is written without a C stream's buffer, and a
// write per line would cost a system call each.
void OutputSink::DeliverCrLf(std::string_view bytes) {
  translated_.clear();
  for (std::size_t pos = 0; pos < bytes.size();) {
    const std::size_t lf = bytes.find('\n', pos);
    if (lf == std::string_view::npos) {
      translated_.append(bytes.substr(pos));
      break;
    }
    translated_.append(bytes.substr(pos, lf - pos)).append("\r\n");
    pos = lf + 1;
  }
  Deliver(translated_);
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
  support::WriteXmlText(text, support::XmlPlace::kAttribute,
                        [this](std::string_view piece) { Write(piece); });
}

void OutputSink::WriteCdata(std::string_view text) {
  Write("<![CDATA[");
  support::WriteXmlText(text, support::XmlPlace::kCdata,
                        [this](std::string_view piece) { Write(piece); });
  Write("]]>");
}

}  // namespace parser
