// The data-stream half of CFtpManager: a file read through one data connection, as lines for
// the parser or as blocks into a local file, and the sizes servers announce for it.
#include <string>
#include <vector>

#include "support/os/file_handle.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_manager.h"
#include "transport/ftp_manager/ftp_manager_raise.h"

namespace transport {

using ftp_manager::kRetrieveClass;
using ftp_manager::kStreamClass;
using ftp_manager::Raise;

namespace {

// Compact the pending text once this much of it has been handed out.
constexpr std::size_t kCompactAfter = 64 * 1024;
constexpr std::size_t kCopyBlockSize = 256 * 1024;

}  // namespace

void CFtpManager::OpenDataStream(const std::string& remote, std::uint64_t offset) {
  const SessionBinding bound(*this);
  size_probe_open_ = false;  // opening finishes a data connection left open
  stream_finished_ = false;
  stream_name_ = remote;
  pending_.clear();
  pending_start_ = 0;
  const auto start = static_cast<std::int64_t>(offset);
  if (FtpOpenDataConnection(remote.c_str(), kFtpActionRetrieve, kFtpTypeBinary, start) != kFtpOk) {
    // Servers refuse REST (502) or an offset past the end (proftpd, pyftpdlib: 550 on RETR).
    if (const int result =
            FtpOpenDataConnection(remote.c_str(), kFtpActionRetrieve, kFtpTypeBinary, 0);
        result != kFtpOk) {
      Raise(kStreamClass, "FtpOpenDataConnection",
            WithTlsReason("FTP failed to open data stream connection!", result));
    }
    SkipBytes(offset);
  }
  data_stream_open_ = true;
}

// Reads and drops exactly `count` bytes (a server that refused REST sends the file from its
// start). The size asked for starts at the buffer length and follows the counts received,
// but never exceeds what is left to skip: the first block of a short offset ("REST 25") holds
// the start of the wanted data too, and must not be read past.
void CFtpManager::SkipBytes(std::uint64_t count) {
  std::uint64_t remaining = count;
  if (buffer_length_ <= 0) buffer_length_ = kBufferSize;
  while (remaining > 0) {
    if (remaining < static_cast<std::uint64_t>(buffer_length_)) {
      buffer_length_ = static_cast<int>(remaining);
    }
    // At the end of the data (or a failed receive) there is nothing left to skip; ReadLine
    // reports what it finds next.
    if (FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_) != kFtpOk) break;
    remaining -= static_cast<std::uint64_t>(buffer_length_);
  }
}

int CFtpManager::CloseDataStream() {
  if (stream_finished_) {
    stream_finished_ = false;
    return 0;
  }
  const SessionBinding bound(*this);
  data_stream_open_ = false;
  if (FtpCloseDataConnection() != kFtpOk) {
    Raise(kRetrieveClass, "FtpCloseDataConnection", "FTP failed to close Data connection");
  }
  return 0;
}

const char* CFtpManager::ReadLine() {
  buffer_length_ = kBufferSize;
  std::size_t scanned = pending_start_;
  std::size_t end = pending_.find('\n', scanned);
  while (end == std::string::npos) {
    const SessionBinding bound(*this);
    const int result = FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_);
    if (result == kFtpDataClosed) return nullptr;
    if (result != kFtpOk) {
      broken_ = true;
      Raise("CFtpManager::ReadLine", "FtpRecvThroughDataConnection",
            "FTP failed to read the data stream of " + stream_name_ + " from " + host_ + ": " +
                FtpErrorString(result));
    }
    if (pending_start_ >= kCompactAfter) {
      pending_.erase(0, pending_start_);
      pending_start_ = 0;
    }
    scanned = pending_.size();
    pending_.append(buffer_.data(), static_cast<std::size_t>(buffer_length_));
    end = pending_.find('\n', scanned);
  }
  current_line_.assign(pending_, pending_start_, end + 1 - pending_start_);
  pending_start_ = end + 1;
  if (pending_start_ == pending_.size()) {
    pending_.clear();
    pending_start_ = 0;
  }
  return current_line_.c_str();
}

std::uint32_t CFtpManager::GetFileSize(const std::string& name) {
  const SessionBinding bound(*this);
  if (data_stream_open_) return static_cast<std::uint32_t>(FtpBytesToBeTransferred());
  // SIZE costs one reply; the announcement of a RETR costs a data connection (and servers
  // such as IIS, FileZilla and pure-ftpd announce no size at all).
  std::uint64_t size = 0;
  if (!size_probe_open_ && FtpSize(name.c_str(), &size) == kFtpOk) {
    return static_cast<std::uint32_t>(size);
  }
  OpenDataStream(name, 0);
  const auto announced = static_cast<std::uint32_t>(FtpBytesToBeTransferred());
  data_stream_open_ = false;
  size_probe_open_ = true;
  return announced;
}

// A server busy sending a large file reads no command until its data connection is gone:
// QUIT behind an unread size probe would wait out the whole time-out.
void CFtpManager::FinishSizeProbe() {
  if (!size_probe_open_) return;
  const SessionBinding bound(*this);
  size_probe_open_ = false;
  FtpCloseDataConnection();  // its final reply (226 or 426) says nothing about the session
}

std::uint64_t CFtpManager::SaveDataStream(const std::string& local_path,
                                          const std::function<void(std::uint64_t)>& progress,
                                          std::uint64_t max_bytes) {
  const SessionBinding bound(*this);
  const os::FileHandle file = os::CreateFileForWrite(local_path);
  if (file == os::kNoFile) Raise("NfsManger::GetTraceFileList", "_lcreat", os::LastFileErrorText());
  std::uint64_t written = 0;
  // Blocks far larger than the line reader's: a copy is bound by system calls per byte.
  std::vector<char> block(kCopyBlockSize);
  for (;;) {
    int length = static_cast<int>(block.size());
    const int result = FtpRecvThroughDataConnection(block.data(), &length);
    if (result == kFtpDataClosed) break;
    const auto size = static_cast<std::size_t>(length);
    if (result != kFtpOk ||
        os::WriteToFile(file, block.data(), size) != static_cast<std::ptrdiff_t>(size)) {
      broken_ = true;
      const std::string why = result != kFtpOk ? FtpErrorString(result) : os::LastFileErrorText();
      os::CloseFile(file);
      Raise(kRetrieveClass, "FtpRecvThroughDataConnection",
            "FTP failed to copy " + stream_name_ + " to " + local_path + ": " + why);
    }
    written += size;
    if (max_bytes > 0 && written > max_bytes) {
      broken_ = true;
      os::CloseFile(file);
      Raise(kRetrieveClass, "FtpRecvThroughDataConnection",
            "FTP stopped copying " + stream_name_ + " to " + local_path +
                ": the server sent more than " + std::to_string(max_bytes) +
                " bytes (the most allowed)");
    }
    if (progress) progress(written);
  }
  if (!os::CloseFile(file)) {
    Raise(kRetrieveClass, "fclose",
          "FTP failed to copy " + stream_name_ + " to " + local_path + ": " +
              os::LastFileErrorText());
  }
  FinishStream();
  return written;
}

bool CFtpManager::OpenLines(const std::string& name, std::uint64_t offset) {
  OpenDataStream(name, offset);
  return true;
}

bool CFtpManager::ReadNextLine(std::string_view* line) {
  if (ReadLine() == nullptr) {
    FinishStream();
    return false;
  }
  *line = current_line_;
  return true;
}

bool CFtpManager::ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) {
  if (data_stream_open_) return false;
  const SessionBinding bound(*this);
  size_probe_open_ = false;  // opening finishes a data connection left open
  if (FtpOpenDataConnection(name.c_str(), kFtpActionRetrieve, kFtpTypeBinary, 0) != kFtpOk) {
    return false;
  }
  head->clear();
  int result = kFtpOk;
  while (head->size() < max_bytes) {
    const std::uint64_t wanted = max_bytes - head->size();
    buffer_length_ =
        wanted < static_cast<std::uint64_t>(kBufferSize) ? static_cast<int>(wanted) : kBufferSize;
    result = FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_);
    if (result != kFtpOk) break;
    head->append(buffer_.data(), static_cast<std::size_t>(buffer_length_));
  }
  buffer_length_ = kBufferSize;
  if (result == kFtpDataClosed) {
    FtpCloseDataConnection();  // the whole file fitted: its 226
  } else {
    // The rest of a large trace is not wanted: ABOR stops the server, where closing the data
    // connection alone would first read the rest of the file away.
    FtpAbort();
    FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_);
    buffer_length_ = kBufferSize;
  }
  return true;
}

// A transfer ends well only with its final reply: a server that closes the data connection
// half-way and drops the control connection has sent a part of the file, not the file.
void CFtpManager::FinishStream() {
  if (stream_finished_) return;
  stream_finished_ = true;  // read once, whatever it says
  const SessionBinding bound(*this);
  data_stream_open_ = false;
  if (FtpCloseDataConnection() != kFtpOk) {
    broken_ = true;
    Raise(kRetrieveClass, "FtpCloseDataConnection", "FTP failed to close Data connection");
  }
}

// The parser closes its source from a destructor, where nothing may be thrown: a stream read
// to its end has been checked by ReadNextLine; one abandoned half-way (a parse that failed)
// is closed, and a bad final reply only logged (by the exception's construction).
void CFtpManager::CloseLines() {
  try {
    CloseDataStream();
  } catch (const exceptions::ExceptionBase&) {
  }
}

}  // namespace transport
