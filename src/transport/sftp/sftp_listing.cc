// CSftpManager's directory work: listings and the search for a session's trace file.
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "support/os/local_time.h"
#include "support/os/wildcard.h"
#include "support/trace_naming.h"
#include "transport/sftp/sftp_connection.h"
#include "transport/sftp/sftp_manager.h"
#include "transport/sftp/sftp_raise.h"

namespace transport {

using sftp::Raise;

namespace {

constexpr const char* kLookup = "GetTraceFileNameFromPID";

// "     1418700 11/23/2026 19:42 orcl_ora_4711.trc\n"
std::string LongLine(const SftpEntry& entry) {
  const os::LocalTime t = os::LocalTimeOfUnixSeconds(entry.modified);
  char head[96];
  std::snprintf(head, sizeof head, "%12llu %02d/%02d/%d %02d:%02d ",
                static_cast<unsigned long long>(entry.size), t.month, t.day, t.year, t.hour,
                t.minute);
  return head + entry.name + "\n";
}

}  // namespace

std::vector<SftpEntry> CSftpManager::ListFiles(const std::string& pattern) {
  sftp::SftpConnection& connection = Connection();
  const auto failed = [&] {
    Raise("GetFileList", "SFTP failed to list " + options_.udump + " on " + connection.address() +
                             ": " + connection.LastError());
  };
  // Each request waits at most the time-out, however long the whole listing takes.
  sftp::SftpDir dir = [&] {
    const sftp::Watchdog::Guard guard = connection.Watch();
    return sftp::SftpDir(sftp_opendir(connection.sftp(), options_.udump.c_str()));
  }();
  if (!dir) failed();
  std::vector<SftpEntry> entries;
  for (;;) {
    const sftp::SftpAttributes entry = [&] {
      const sftp::Watchdog::Guard guard = connection.Watch();
      return sftp::SftpAttributes(sftp_readdir(connection.sftp(), dir.get()));
    }();
    if (!entry) break;
    if (entry->name == nullptr || entry->type == SSH_FILEXFER_TYPE_DIRECTORY) continue;
    if (!os::WildcardMatch(pattern, entry->name)) continue;
    entries.push_back({entry->name, entry->size, static_cast<std::int64_t>(entry->mtime)});
  }
  const bool complete = sftp_dir_eof(dir.get()) != 0;
  {
    const sftp::Watchdog::Guard guard = connection.Watch();
    dir.reset();
  }
  if (!complete) failed();
  std::sort(entries.begin(), entries.end(),
            [](const SftpEntry& a, const SftpEntry& b) { return a.name < b.name; });
  return entries;
}

void CSftpManager::GetFileList(std::uint16_t mode, const std::string& pattern) {
  if (mode > 1) return;
  const std::vector<SftpEntry> entries = ListFiles(pattern);
  const std::string path = work_dir_ + kListingFileName;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  for (const SftpEntry& entry : entries) out << (mode == 0 ? entry.name + "\n" : LongLine(entry));
  out.close();
  if (!out) Raise("GetFileList", "SFTP failed to write the file listing " + path);
}

std::uint64_t CSftpManager::GetTraceFileNameFromPID(const std::string& pid, std::string* name) {
  const std::vector<SftpEntry> candidates = ListFiles("*" + pid + "*.trc");
  for (const SftpEntry& entry : candidates) {
    // The name becomes a local file name when the caller copies the file.
    if (!IsPlainSftpName(entry.name)) {
      Raise(kLookup, "SFTP refused the trace file name " + entry.name +
                         " from the server! A file name must not hold a path.");
    }
  }
  if (candidates.empty()) Raise(kLookup, "SFTP did not find a trace file for the session!");
  if (candidates.size() == 1) {
    *name = candidates.front().name;
    return candidates.front().size;
  }
  // pid 12 also finds orcl_ora_123.trc; the zero-padded "00012" tells the session's own file.
  const std::string converted = support::ConvertPID2TraceFilename(pid);
  const SftpEntry* match = nullptr;
  for (const SftpEntry& entry : candidates) {
    if (entry.name.find(converted) == std::string::npos) continue;
    if (match != nullptr) {
      Raise(kLookup,
            "SFTP did not find a unique converted trace file for the session! Check the trace "
            "files in the user_dump_dest. Clean up if necessary.");
    }
    match = &entry;
  }
  if (match == nullptr) Raise(kLookup, "SFTP did not find a matched trace file for the session!");
  *name = match->name;
  return match->size;
}

}  // namespace transport
