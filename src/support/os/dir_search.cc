#include "support/os/dir_search.h"

#include "support/os/system_error_text.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cerrno>

#include "support/os/wildcard.h"
#endif

namespace os {

#ifdef _WIN32

namespace {

LocalTime ToLocalTime(const FILETIME& utc) {
  LocalTime result;
  FILETIME local;
  SYSTEMTIME calendar;
  if (FileTimeToLocalFileTime(&utc, &local) && FileTimeToSystemTime(&local, &calendar)) {
    result = {calendar.wYear, calendar.wMonth,  calendar.wDay,
              calendar.wHour, calendar.wMinute, calendar.wSecond};
  }
  return result;
}

DirEntry ToEntry(const WIN32_FIND_DATAA& data) {
  DirEntry entry;
  entry.name = data.cFileName;
  entry.size = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
  entry.last_write = ToLocalTime(data.ftLastWriteTime);
  entry.regular = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  return entry;
}

class FindHandle {
 public:
  explicit FindHandle(HANDLE handle) : handle_(handle) {}
  FindHandle(const FindHandle&) = delete;
  FindHandle& operator=(const FindHandle&) = delete;
  ~FindHandle() {
    if (handle_ != INVALID_HANDLE_VALUE) FindClose(handle_);
  }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace

DirSearchResult FindFiles(const std::string& search_path) {
  DirSearchResult result;
  WIN32_FIND_DATAA data;
  FindHandle find(FindFirstFileA(search_path.c_str(), &data));
  if (find.get() == INVALID_HANDLE_VALUE) {
    result.error = LastErrorText();
    return result;
  }
  result.started = true;
  do {
    result.entries.push_back(ToEntry(data));
  } while (FindNextFileA(find.get(), &data));
  return result;
}

#else

namespace {

struct SplitPath {
  std::string directory;
  std::string pattern;
};

SplitPath Split(const std::string& search_path) {
  const std::size_t slash = search_path.rfind('/');
  if (slash == std::string::npos) return {".", search_path};
  return {slash == 0 ? "/" : search_path.substr(0, slash), search_path.substr(slash + 1)};
}

class DirHandle {
 public:
  explicit DirHandle(const std::string& directory) : dir_(opendir(directory.c_str())) {}
  DirHandle(const DirHandle&) = delete;
  DirHandle& operator=(const DirHandle&) = delete;
  ~DirHandle() {
    if (dir_ != nullptr) closedir(dir_);
  }
  DIR* get() const { return dir_; }

 private:
  DIR* dir_;
};

LocalTime ToLocalTime(time_t when) {
  LocalTime result;
  struct tm calendar {};
  if (localtime_r(&when, &calendar) != nullptr) {
    result = {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday,
              calendar.tm_hour,        calendar.tm_min,     calendar.tm_sec};
  }
  return result;
}

// Size and time of one entry. A link that points nowhere is still listed, with its own data.
DirEntry Describe(int dir_fd, const char* name) {
  DirEntry entry;
  entry.name = name;
  struct stat info {};
  if (fstatat(dir_fd, name, &info, 0) == 0) {
    entry.regular = S_ISREG(info.st_mode);
  } else if (fstatat(dir_fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
    return entry;
  }
  entry.size = S_ISDIR(info.st_mode) ? 0 : static_cast<std::uint64_t>(info.st_size);
  entry.last_write = ToLocalTime(info.st_mtime);
  return entry;
}

}  // namespace

DirSearchResult FindFiles(const std::string& search_path) {
  DirSearchResult result;
  const SplitPath path = Split(search_path);
  DirHandle dir(path.directory);
  if (dir.get() == nullptr) {
    result.error = ErrnoText(errno);
    return result;
  }
  while (const dirent* item = readdir(dir.get())) {
    if (WildcardMatch(path.pattern, item->d_name)) {
      result.entries.push_back(Describe(dirfd(dir.get()), item->d_name));
    }
  }
  if (result.entries.empty()) {
    result.error = ErrnoText(ENOENT);
    return result;
  }
  std::sort(result.entries.begin(), result.entries.end(),
            [](const DirEntry& a, const DirEntry& b) { return a.name < b.name; });
  result.started = true;
  return result;
}

#endif

}  // namespace os
