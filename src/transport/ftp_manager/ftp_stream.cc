// The data-stream half of CFtpManager: a file read through one data connection, as lines for
// the parser or as blocks into a local file, and the sizes servers announce for it.
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

}  // namespace

void CFtpManager::OpenDataStream(const std::string& remote, std::uint64_t offset) {
  size_probe_open_ = false;  // opening finishes a data connection left open
  stream_name_ = remote;
  pending_.clear();
  pending_start_ = 0;
  const auto start = static_cast<std::int64_t>(offset);
  if (FtpOpenDataConnection(remote.c_str(), kFtpActionRetrieve, kFtpTypeBinary, start) != kFtpOk) {
    // Servers refuse REST (502) or an offset past the end (proftpd, pyftpdlib: 550 on RETR).
    if (FtpOpenDataConnection(remote.c_str(), kFtpActionRetrieve, kFtpTypeBinary, 0) != kFtpOk) {
      Raise(kStreamClass, "FtpOpenDataConnection", "FTP failed to open data stream connection!");
    }
    SkipBytes(offset);
  }
  data_stream_open_ = true;
}

// Reads and drops `count` bytes. The size asked for starts at the buffer length and follows
// the counts received, down to exactly the remainder for the last block.
void CFtpManager::SkipBytes(std::uint64_t count) {
  std::uint64_t remaining = count;
  // A skip that ended exactly on its count left 0 behind, which asks for nothing.
  if (buffer_length_ <= 0) buffer_length_ = kBufferSize;
  while (remaining > 0) {
    // At the end of the data (or a failed receive) there is nothing left to skip; ReadLine
    // reports what it finds next.
    if (FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_) != kFtpOk) break;
    remaining -= static_cast<std::uint64_t>(buffer_length_);
    if (remaining < static_cast<std::uint64_t>(buffer_length_)) {
      buffer_length_ = static_cast<int>(remaining);
    }
  }
}

int CFtpManager::CloseDataStream() {
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
    const int result = FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_);
    if (result == kFtpDataClosed) return nullptr;
    if (result != kFtpOk) {
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
  if (data_stream_open_) return static_cast<std::uint32_t>(FtpBytesToBeTransferred());
  OpenDataStream(name, 0);
  const auto size = static_cast<std::uint32_t>(FtpBytesToBeTransferred());
  data_stream_open_ = false;
  size_probe_open_ = true;
  return size;
}

// A server busy sending a large file reads no command until its data connection is gone:
// QUIT behind an unread size probe would wait out the whole time-out.
void CFtpManager::FinishSizeProbe() {
  if (!size_probe_open_) return;
  size_probe_open_ = false;
  FtpCloseDataConnection();  // its final reply (226 or 426) says nothing about the session
}

std::uint64_t CFtpManager::SaveDataStream(const std::string& local_path,
                                          const std::function<void(std::uint64_t)>& progress) {
  const os::FileHandle file = os::CreateFileForWrite(local_path);
  if (file == os::kNoFile) Raise("NfsManger::GetTraceFileList", "_lcreat", os::LastFileErrorText());
  std::uint64_t written = 0;
  for (;;) {
    buffer_length_ = kBufferSize;
    const int result = FtpRecvThroughDataConnection(buffer_.data(), &buffer_length_);
    if (result == kFtpDataClosed) break;
    const auto size = static_cast<std::size_t>(buffer_length_);
    if (result != kFtpOk ||
        os::WriteToFile(file, buffer_.data(), size) != static_cast<std::ptrdiff_t>(size)) {
      const std::string why = result != kFtpOk ? FtpErrorString(result) : os::LastFileErrorText();
      os::CloseFile(file);
      Raise(kRetrieveClass, "FtpRecvThroughDataConnection",
            "FTP failed to copy " + stream_name_ + " to " + local_path + ": " + why);
    }
    written += size;
    if (progress) progress(written);
  }
  if (!os::CloseFile(file)) {
    Raise(kRetrieveClass, "fclose",
          "FTP failed to copy " + stream_name_ + " to " + local_path + ": " +
              os::LastFileErrorText());
  }
  return written;
}

bool CFtpManager::OpenLines(const std::string& name, std::uint64_t offset) {
  OpenDataStream(name, offset);
  return true;
}

bool CFtpManager::ReadNextLine(std::string_view* line) {
  if (ReadLine() == nullptr) return false;
  *line = current_line_;
  return true;
}

bool CFtpManager::ReadHead(const std::string& name, std::uint64_t max_bytes, std::string* head) {
  if (data_stream_open_) return false;
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

// The parser closes its source from a destructor, where nothing may be thrown. The data has
// all arrived by then; a bad final reply is only logged (by the exception's construction).
void CFtpManager::CloseLines() {
  try {
    CloseDataStream();
  } catch (const exceptions::ExceptionBase&) {
  }
}

}  // namespace transport
