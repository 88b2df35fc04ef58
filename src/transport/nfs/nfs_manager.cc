#include "transport/nfs/nfs_manager.h"

#include <algorithm>
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

namespace {

struct Choice {
  std::size_t chosen = 0;  // the session's file
  std::size_t paired = 0;  // the entry whose size GetTraceFileNameFromPID answers with
};

// Picks the session's file among `entries`. One candidate is taken as it is; of several, the
// one whose name holds the zero-padded pid, and none or more than one such name fails. The
// paired size is the one at the position of the match count among the candidates: the FIRST
// candidate's size for the (only) match, not necessarily the chosen file's. Callers rely on this
// pairing; do not "fix" it.
Choice Choose(const std::vector<os::DirEntry>& entries, const std::string& pid,
              std::string* file_name) {
  for (const os::DirEntry& entry : entries) *file_name = entry.name;
  if (entries.empty()) {
    Raise(kListClass, "FindFirstFile", "NFS did not find a trace file for the session!");
  }
  if (entries.size() == 1) return {0, 0};

  // pid 12 also finds ora_123.trc; the zero-padded form "00012" tells the session's own file.
  const std::string converted = support::ConvertPID2TraceFilename(pid);
  Choice choice;
  std::size_t matches = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].name.find(converted) == std::string::npos) continue;
    *file_name = entries[i].name;
    choice = {i, matches};  // by match count, not by the entry's own position
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
  return choice;
}

}  // namespace

std::vector<os::DirEntry> CNfsManager::Candidates(const std::string& pid) const {
  if (trace_path_.empty()) Raise(kLookupClass, "Init", kNotSet);
  os::DirSearchResult search =
      os::FindFiles(trace_path_ + os::kPathSeparator + "*" + pid + "*.trc");
  if (!search.started) {
    Raise(kLookupClass, "FindFirstFile", "NFS failed to open trace file for the session!");
  }
  return std::move(search.entries);
}

std::uint32_t CNfsManager::GetTraceFileNameFromPID(const std::string& pid, std::string* file_name) {
  const std::vector<os::DirEntry> entries = Candidates(pid);
  return entries[Choose(entries, pid, file_name).paired].SizeLow32();
}

CNfsManager::FoundTraceFile CNfsManager::FindTraceFileOfPID(const std::string& pid) {
  std::vector<os::DirEntry> entries = Candidates(pid);
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [](const os::DirEntry& entry) { return !entry.regular; }),
                entries.end());
  FoundTraceFile found;
  const Choice choice = Choose(entries, pid, &found.name);
  found.size = entries[choice.chosen].size;
  return found;
}

}  // namespace transport
