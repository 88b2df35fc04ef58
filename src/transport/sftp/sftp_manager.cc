// The session half of CSftpManager: connection, sizes, copies and the line stream.
#include "transport/sftp/sftp_manager.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "support/os/file_handle.h"
#include "support/os/path_separator.h"
#include "transport/sftp/sftp_connection.h"
#include "transport/sftp/sftp_raise.h"
#include "transport/sftp/sftp_stream.h"

namespace transport {

using sftp::Raise;

namespace {

// A local file being written under a temporary name: removed unless Commit renamed it.
class PartFile {
 public:
  PartFile(std::filesystem::path target)
      : target_(std::move(target)), part_(target_.string() + ".part") {
    file_ = os::CreateFileForWrite(part_.string());
    if (file_ == os::kNoFile) Fail("cannot create " + part_.string(), os::LastFileErrorText());
  }
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() {
    if (file_ != os::kNoFile) os::CloseFile(file_);
    std::error_code ignored;
    if (!committed_) std::filesystem::remove(part_, ignored);
  }

  void Write(const char* data, std::size_t size) {
    if (os::WriteToFile(file_, data, size) != static_cast<std::ptrdiff_t>(size)) {
      Fail("cannot write " + part_.string(), os::LastFileErrorText());
    }
  }
  void Commit() {
    const bool closed = os::CloseFile(file_);
    file_ = os::kNoFile;
    if (!closed) Fail("cannot write " + part_.string(), os::LastFileErrorText());
    std::error_code error;
    std::filesystem::rename(part_, target_, error);
    if (error) Fail("cannot rename " + part_.string() + " to " + target_.string(), error.message());
    committed_ = true;
  }

 private:
  [[noreturn]] static void Fail(const std::string& what, const std::string& why) {
    Raise("RetrieveFile", "SFTP " + what + ": " + why);
  }

  std::filesystem::path target_;
  std::filesystem::path part_;
  os::FileHandle file_ = os::kNoFile;
  bool committed_ = false;
};

}  // namespace

bool IsPlainSftpName(std::string_view name) {
  return !name.empty() && name.find_first_of("/\\") == std::string_view::npos &&
         name.find("..") == std::string_view::npos;
}

void CSftpManager::RequirePlainName(const char* method, const std::string& name) {
  if (!IsPlainSftpName(name)) {
    Raise(method, "SFTP refused the file name " + name + ": a file name must not hold a path.");
  }
}

CSftpManager::CSftpManager() = default;
CSftpManager::~CSftpManager() = default;

void CSftpManager::SetOptions(sftp::SftpOptions options) {
  options_ = std::move(options);
}

void CSftpManager::SetWorkDir(const std::string& path) {
  work_dir_ = path + os::kPathSeparator;
}

void CSftpManager::Init() {
  if (options_.host.empty() || options_.user.empty() || options_.udump.empty()) {
    Raise("Init", "SFTP needs a host, a user and a trace directory; one of them is empty!");
  }
  Close();
  auto connection = std::make_unique<sftp::SftpConnection>(options_);
  const sftp::SftpAttributes directory = [&] {
    const sftp::Watchdog::Guard guard = connection->Watch();
    return sftp::SftpAttributes(sftp_stat(connection->sftp(), options_.udump.c_str()));
  }();
  if (!directory || directory->type != SSH_FILEXFER_TYPE_DIRECTORY) {
    Raise("Init", "SFTP failed to change to trace directory " + options_.udump + " on " +
                      connection->address() + ": " +
                      (directory ? std::string("not a directory") : connection->LastError()));
  }
  connection_ = std::move(connection);
}

void CSftpManager::Close() {
  stream_.reset();
  connection_.reset();
}

sftp::SftpConnection& CSftpManager::Connection() {
  if (!connection_) Raise("Init", "SFTP is not connected: Init first");
  return *connection_;
}

std::string CSftpManager::RemotePath(const std::string& name) const {
  const bool has_slash = !options_.udump.empty() && options_.udump.back() == '/';
  return options_.udump + (has_slash ? "" : "/") + name;
}

std::uint64_t CSftpManager::GetFileSize(const std::string& name) {
  sftp::SftpConnection& connection = Connection();
  const sftp::SftpAttributes attributes = [&] {
    const sftp::Watchdog::Guard guard = connection.Watch();
    return sftp::SftpAttributes(sftp_stat(connection.sftp(), RemotePath(name).c_str()));
  }();
  if (!attributes) {
    Raise("GetFileSize", "SFTP failed to find " + name + " on " + connection.address() + ": " +
                             connection.LastError());
  }
  return attributes->size;
}

std::uint64_t CSftpManager::RetrieveFile(const std::string& name, const std::string& directory,
                                         const Progress& progress) {
  RequirePlainName("RetrieveFile", name);
  sftp::SftpStream stream(Connection(), RemotePath(name), name, 0);
  PartFile local(std::filesystem::path(directory) / name);
  std::vector<char> block(sftp::SftpStream::kBlockSize);
  std::uint64_t copied = 0;
  for (;;) {
    const std::size_t count = stream.Read(block.data());
    if (count == 0) break;
    local.Write(block.data(), count);
    copied += count;
    if (progress) progress(copied, stream.size());
  }
  local.Commit();
  return copied;
}

bool CSftpManager::OpenLines(const std::string& name, std::uint64_t offset) {
  // Documents are named after the trace: a name with a path would put them elsewhere.
  RequirePlainName("OpenDataStream", name);
  stream_.reset();
  stream_ = std::make_unique<sftp::SftpStream>(Connection(), RemotePath(name), name, offset);
  return true;
}

bool CSftpManager::ReadNextLine(std::string_view* line) {
  return stream_ && stream_->NextLine(line);
}

void CSftpManager::CloseLines() {
  stream_.reset();
}

std::uint64_t CSftpManager::OpenedSize() const {
  return stream_ ? stream_->size() : 0;
}

}  // namespace transport
