#include "transport/nfs/nfs_manager.h"

#include <cerrno>
#include <utility>
#include <vector>

#include "support/exceptions.h"
#include "support/os/dir_search.h"
#include "support/os/path_separator.h"
#include "support/os/system_error_text.h"
#include "support/trace_naming.h"
#include "transport/nfs/nfs_listing.h"

namespace transport {

namespace {

constexpr const char* kFile = "NfsManager";
constexpr const char* kNotSet = "NFS working dir or qualified trace path is not set!";
constexpr const char* kListClass = "NfsManger::GetTraceFileList";
constexpr const char* kLookupClass = "NfsManger::GetTraceFileNameFromPID";

[[noreturn]] void Raise(const char* class_name, const char* method, std::string message) {
  throw exceptions::ExceptionBase(kFile, class_name, method, std::move(message));
}

}  // namespace

void CNfsManager::Init(const NfsConnectInfo& info) {
  trace_path_ = info.GetUdump();
}

void CNfsManager::SetConnectInfo(const char* path) {
  if (path == nullptr) Raise("NfsManger", "SetConnectInfo", "NFS qualified trace path is empty!");
  trace_path_ = path;
}

void CNfsManager::SetTraceSearchPath(const std::string& path) {
  trace_path_ = path + os::kPathSeparator + "*.trc";
}

void CNfsManager::SetLocalDirectory(const std::string& path) {
  local_directory_ = path + os::kPathSeparator;
}

void CNfsManager::GetTraceFileList(std::uint16_t list_style, const std::string& pattern) {
  if (trace_path_.empty()) Raise("NfsManger::Init", "Init", kNotSet);
  // SetLocalDirectory has already put the separator at the end.
  const std::string listing_path = local_directory_ + kListingFileName;
  NfsListingFile listing(listing_path);
  if (!listing.is_open()) Raise(kListClass, "fopen", "NFS failed to get remote file listing!");

  const os::DirSearchResult search = os::FindFiles(trace_path_ + os::kPathSeparator + pattern);
  if (!search.started) {
    listing.Close();  // an empty listing stays behind
    Raise(kListClass, "FindFirstFile", search.error);
  }
  for (const os::DirEntry& entry : search.entries) {
    if (!listing.Write(NfsListingLine(entry, list_style != 0))) {
      Raise(kListClass, "fwrite",
            "NFS failed to write the file listing " + listing_path + ": " + os::ErrnoText(errno));
    }
  }
  if (!listing.Close()) {
    Raise(kListClass, "fclose",
          "NFS failed to write the file listing " + listing_path + ": " + os::ErrnoText(errno));
  }
}

std::uint32_t CNfsManager::GetTraceFileNameFromPID(const std::string& pid, std::string* file_name) {
  if (trace_path_.empty()) Raise(kLookupClass, "Init", kNotSet);
  const os::DirSearchResult search =
      os::FindFiles(trace_path_ + os::kPathSeparator + "*" + pid + "*.trc");
  if (!search.started) {
    Raise(kLookupClass, "FindFirstFile", "NFS failed to open trace file for the session!");
  }
  std::vector<std::uint32_t> sizes;
  std::uint32_t result = 0;
  for (const os::DirEntry& entry : search.entries) {
    *file_name = entry.name;
    sizes.push_back(entry.SizeLow32());
    result = entry.SizeLow32();
  }
  if (sizes.empty()) {
    Raise(kListClass, "FindFirstFile", "NFS did not find a trace file for the session!");
  }
  if (sizes.size() == 1) return result;

  // pid 12 also finds ora_123.trc; the zero-padded form "00012" tells the session's own file.
  const std::string converted = support::ConvertPID2TraceFilename(pid);
  std::size_t matches = 0;
  for (const os::DirEntry& entry : search.entries) {
    if (entry.name.find(converted) == std::string::npos) continue;
    *file_name = entry.name;
    result = sizes[matches];  // by match count, not by the entry's own position
    ++matches;
  }
  if (matches == 0) {
    Raise(kListClass, "FindFirstFile", "NFS did not find a matched trace file for the session!");
  }
  if (matches > 1) {
    Raise(kListClass, "FindFirstFile",
          "NFS did not find a unique converted trace file for the session! Check the trace files "
          "in the user_dump_dest. Clean up if necessary.");
  }
  return result;
}

}  // namespace transport
