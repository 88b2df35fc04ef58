// One remote file open for reading from an offset, as blocks or as lines. Internal.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "transport/sftp/sftp_connection.h"

namespace transport::sftp {

class SftpStream {
 public:
  // Bytes asked for per read request: every server answers 32 KiB at once (OpenSSH up to
  // 255 KiB; a shorter answer than asked for restarts the requests, see Read).
  static constexpr std::size_t kBlockSize = 32 * 1024;
  // Read requests kept under way (512 KiB), so the server sends the next blocks while we parse
  // one: a network's round trip per block would otherwise cap the rate (at 1 ms, 32 MB/s).
  static constexpr std::size_t kRequestsAhead = 16;

  // Opens `path` (shown as `name` in messages) and moves to `offset`; throws when either fails.
  SftpStream(SftpConnection& connection, const std::string& path, std::string name,
             std::uint64_t offset);
  SftpStream(const SftpStream&) = delete;
  SftpStream& operator=(const SftpStream&) = delete;
  ~SftpStream();  // closes the remote file, within the time-out

  // The file's size when it was opened.
  std::uint64_t size() const { return size_; }
  // The next block, up to kBlockSize bytes, into `data` (room for kBlockSize); 0 at the end of
  // the file. Throws when reading fails.
  std::size_t Read(char* data);
  // The next line, ending in "\n", valid until the next call; false at the end of the file
  // (a last line without "\n" is dropped).
  bool NextLine(std::string_view* line);

 private:
  struct Request {
    std::uint32_t id;
    std::uint64_t offset;
  };
  // Sends read requests until kRequestsAhead are under way.
  void RequestAhead();
  // The answer to the oldest request into `data`: its byte count, 0 at the end of the file.
  std::size_t Receive(Request request, char* data);
  // Collects and drops the answers still due (libssh keeps each until asked for it) and makes
  // the next request start at `offset`.
  void Restart(std::uint64_t offset);
  [[noreturn]] void Fail(const char* method);

  SftpConnection& connection_;
  std::string name_;
  SftpFile file_;
  std::deque<Request> requests_;
  std::uint64_t next_offset_ = 0;  // where the next request starts
  bool end_seen_ = false;          // a request met the end of the file
  std::uint64_t size_ = 0;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;  // first byte not yet handed out
  std::size_t end_ = 0;    // end of the bytes read
  bool at_end_ = false;
};

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_
