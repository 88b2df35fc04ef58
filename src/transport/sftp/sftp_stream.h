// One remote file open for reading from an offset, as blocks or as lines. Internal.
#ifndef PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_
#define PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "transport/sftp/sftp_connection.h"

namespace transport::sftp {

class SftpStream {
 public:
  // Bytes asked for per read request; OpenSSH answers up to 255 KiB at once.
  static constexpr std::size_t kBlockSize = 128 * 1024;

  // Opens `path` (shown as `name` in messages) and moves to `offset`; throws when either fails.
  SftpStream(SftpConnection& connection, const std::string& path, std::string name,
             std::uint64_t offset);
  SftpStream(const SftpStream&) = delete;
  SftpStream& operator=(const SftpStream&) = delete;
  ~SftpStream();  // closes the remote file, within the time-out

  // The file's size when it was opened.
  std::uint64_t size() const { return size_; }
  // Up to `capacity` bytes into `data`; 0 at the end of the file. Throws when reading fails.
  std::size_t Read(char* data, std::size_t capacity);
  // The next line, ending in "\n", valid until the next call; false at the end of the file
  // (a last line without "\n" is dropped).
  bool NextLine(std::string_view* line);

 private:
  SftpConnection& connection_;
  std::string name_;
  SftpFile file_;
  std::uint64_t size_ = 0;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;  // first byte not yet handed out
  std::size_t end_ = 0;    // end of the bytes read
  bool at_end_ = false;
};

}  // namespace transport::sftp

#endif  // PELICOR_TRANSPORT_SFTP_SFTP_STREAM_H_
