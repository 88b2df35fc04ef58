#include "transport/nfs/nfs_listing.h"

#include <cstdint>

namespace transport {

std::string NfsListingLine(const os::DirEntry& entry, bool long_form) {
  if (!long_form) return entry.name + "\n";
  // The listing has always shown a 32-bit signed size: a 3 GiB file reads -1073741824.
  const auto size = static_cast<std::int32_t>(entry.SizeLow32());
  const os::LocalTime& t = entry.last_write;
  char head[96];
  std::snprintf(head, sizeof head, "%12ld %02d/%02d/%d %02d:%02d ", static_cast<long>(size),
                t.month, t.day, t.year, t.hour, t.minute);
  return head + entry.name + "\n";
}

NfsListingFile::NfsListingFile(const std::string& path) : file_(std::fopen(path.c_str(), "w")) {}

bool NfsListingFile::Write(const std::string& line) {
  return std::fwrite(line.data(), 1, line.size(), file_.get()) == line.size();
}

bool NfsListingFile::Close() {
  std::FILE* file = file_.release();
  return file != nullptr && std::fclose(file) == 0;
}

}  // namespace transport
