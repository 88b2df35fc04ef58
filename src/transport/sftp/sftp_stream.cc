#include "transport/sftp/sftp_stream.h"

#include <cstring>
#include <utility>

#include "support/exceptions.h"
#include "transport/sftp/sftp_raise.h"

namespace transport::sftp {

namespace {

// sftp_open takes the open(2) flags; O_RDONLY is 0 everywhere.
constexpr int kReadOnly = 0;

}  // namespace

SftpStream::SftpStream(SftpConnection& connection, const std::string& path, std::string name,
                       std::uint64_t offset)
    : connection_(connection), name_(std::move(name)), next_offset_(offset), buffer_(kBlockSize) {
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
  try {
    Restart(next_offset_);
  } catch (const exceptions::ExceptionBase&) {
    // The connection is gone; the session's end frees what it still holds.
  }
  file_.reset();
}

void SftpStream::Fail(const char* method) {
  Raise(method, "SFTP failed to read " + name_ + " from " + connection_.address() + ": " +
                    connection_.LastError());
}

void SftpStream::RequestAhead() {
  while (!end_seen_ && requests_.size() < kRequestsAhead) {
    // libssh moves its own offset on by the length asked for with every request.
    const int id = sftp_async_read_begin(file_.get(), static_cast<std::uint32_t>(kBlockSize));
    if (id < 0) Fail("ReadLine");
    requests_.push_back({static_cast<std::uint32_t>(id), next_offset_});
    next_offset_ += kBlockSize;
  }
}

std::size_t SftpStream::Receive(Request request, char* data) {
  // libssh answers 0 to every request of a file once one has met its end, without collecting
  // the answer: moving the file (to where it is) clears that mark.
  if (sftp_seek64(file_.get(), next_offset_) != 0) Fail("ReadLine");
  const int count =
      sftp_async_read(file_.get(), data, static_cast<std::uint32_t>(kBlockSize), request.id);
  if (count < 0) Fail("ReadLine");
  return static_cast<std::size_t>(count);
}

void SftpStream::Restart(std::uint64_t offset) {
  std::vector<char> dropped(requests_.empty() ? 0 : kBlockSize);
  while (!requests_.empty()) {
    const Request request = requests_.front();
    requests_.pop_front();
    Receive(request, dropped.data());
  }
  next_offset_ = offset;
  if (sftp_seek64(file_.get(), offset) != 0) Fail("ReadLine");
}

// A block shorter than asked for ends the file for now (or the server sends less at once): the
// requests behind it asked for bytes beyond, which a growing file may have by the time the
// server reads them, so they are dropped and reading goes on right behind the short block.
std::size_t SftpStream::Read(char* data) {
  const Watchdog::Guard guard = connection_.Watch();
  RequestAhead();
  if (requests_.empty()) return 0;
  const Request request = requests_.front();
  requests_.pop_front();
  const std::size_t count = Receive(request, data);
  if (count == 0) end_seen_ = true;
  if (count < kBlockSize) Restart(request.offset + count);
  return count;
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
    const std::size_t count = Read(buffer_.data() + end_);
    if (count == 0) at_end_ = true;
    end_ += count;
  }
}

}  // namespace transport::sftp
