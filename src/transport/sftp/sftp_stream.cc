#include "transport/sftp/sftp_stream.h"

#include <cstring>
#include <utility>

#include "transport/sftp/sftp_raise.h"

namespace transport::sftp {

namespace {

// sftp_open takes the open(2) flags; O_RDONLY is 0 everywhere.
constexpr int kReadOnly = 0;

}  // namespace

SftpStream::SftpStream(SftpConnection& connection, const std::string& path, std::string name,
                       std::uint64_t offset)
    : connection_(connection), name_(std::move(name)), buffer_(kBlockSize) {
  const Watchdog::Guard guard = connection_.Watch();
  file_.reset(sftp_open(connection_.sftp(), path.c_str(), kReadOnly, 0));
  if (!file_) {
    Raise("OpenDataStream", "SFTP failed to open " + name_ + " on " + connection_.address() + ": " +
                                connection_.LastError());
  }
  const SftpAttributes attributes(sftp_fstat(file_.get()));
  if (attributes) size_ = attributes->size;
  if (offset > 0 && sftp_seek64(file_.get(), offset) != 0) {
    Raise("OpenDataStream", "SFTP failed to move to byte " + std::to_string(offset) + " of " +
                                name_ + " on " + connection_.address());
  }
}

SftpStream::~SftpStream() {
  const Watchdog::Guard guard = connection_.Watch();
  file_.reset();
}

std::size_t SftpStream::Read(char* data, std::size_t capacity) {
  const Watchdog::Guard guard = connection_.Watch();
  const ssize_t count = sftp_read(file_.get(), data, capacity);
  if (count < 0) {
    Raise("ReadLine", "SFTP failed to read " + name_ + " from " + connection_.address() + ": " +
                          connection_.LastError());
  }
  return static_cast<std::size_t>(count);
}

bool SftpStream::NextLine(std::string_view* line) {
  for (;;) {
    const char* start = buffer_.data() + begin_;
    if (const void* found = std::memchr(start, '\n', end_ - begin_)) {
      const std::size_t length = static_cast<std::size_t>(static_cast<const char*>(found) - start);
      *line = std::string_view(start, length + 1);
      begin_ += length + 1;
      return true;
    }
    if (at_end_) return false;
    // Keep the unfinished line at the front and make room for a whole block behind it; a line
    // longer than a block makes the buffer grow.
    std::memmove(buffer_.data(), start, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    if (buffer_.size() < end_ + kBlockSize) buffer_.resize(end_ + kBlockSize);
    const std::size_t count = Read(buffer_.data() + end_, kBlockSize);
    if (count == 0) at_end_ = true;
    end_ += count;
  }
}

}  // namespace transport::sftp
