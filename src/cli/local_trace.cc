#include "cli/local_trace.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string_view>

namespace cli {

namespace {

namespace fs = std::filesystem;

// The first bytes of each packed form we read. A file that cannot be opened is left to the
// parser, which says so in its own words.
bool IsPacked(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::array<unsigned char, 6> head{};
  in.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(head.size()));
  const auto starts = [&](std::string_view magic) {
    return static_cast<std::size_t>(in.gcount()) >= magic.size() &&
           std::memcmp(head.data(), magic.data(), magic.size()) == 0;
  };
  return starts("\x1f\x8b") || starts("BZh") ||
         starts(
             "\xfd"
             "7zXZ") ||
         starts("\x28\xb5\x2f\xfd") || starts("PK\x03\x04");
}

// "orcl_ora_1.trc.gz" -> "orcl_ora_1.trc".
std::string UnpackedName(const std::string& name) {
  std::string base = fs::path(name).filename().string();
  for (const char* suffix : {".gz", ".bz2", ".xz", ".zst", ".GZ", ".BZ2", ".XZ", ".ZST"}) {
    const std::size_t length = std::strlen(suffix);
    if (base.size() > length && base.compare(base.size() - length, length, suffix) == 0) {
      return base.substr(0, base.size() - length);
    }
  }
  return base.empty() || base == "-" ? "stdin.trc" : base;
}

class Archive {
 public:
  Archive() : archive_(archive_read_new()) {
    if (archive_ == nullptr) throw std::runtime_error("cannot start libarchive");
    archive_read_support_filter_all(archive_);
    archive_read_support_format_zip(archive_);
    archive_read_support_format_raw(archive_);  // a compressed file holds the trace alone
  }
  ~Archive() { archive_read_free(archive_); }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;
  archive* get() const { return archive_; }
  std::string Error() const {
    const char* text = archive_error_string(archive_);
    return text == nullptr ? "unknown error" : text;
  }

 private:
  archive* archive_;
};

// Writes the first regular file of the archive at `packed` (for a compressed file, its whole
// text) into `directory` and returns its path.
std::string Unpack(const std::string& packed, const std::string& shown, const fs::path& directory) {
  const Archive reader;
  const auto fail = [&](const std::string& what) {
    throw std::runtime_error("cannot read " + shown + ": " + what);
  };
  if (archive_read_open_filename(reader.get(), packed.c_str(), 1 << 16) != ARCHIVE_OK) {
    fail(reader.Error());
  }
  archive_entry* entry = nullptr;
  for (;;) {
    const int status = archive_read_next_header(reader.get(), &entry);
    if (status == ARCHIVE_EOF) fail("the archive holds no file");
    if (status != ARCHIVE_OK && status != ARCHIVE_WARN) fail(reader.Error());
    if (archive_format(reader.get()) == ARCHIVE_FORMAT_RAW ||
        archive_entry_filetype(entry) == AE_IFREG) {
      break;
    }
  }
  std::string name = UnpackedName(shown);
  if (archive_format(reader.get()) != ARCHIVE_FORMAT_RAW) {
    name = fs::path(archive_entry_pathname(entry)).filename().string();
  }
  const std::string path = (directory / name).string();
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw std::runtime_error("cannot create " + path);
  std::array<char, 1 << 16> block{};
  for (;;) {
    const la_ssize_t got = archive_read_data(reader.get(), block.data(), block.size());
    if (got < 0) fail(reader.Error());
    if (got == 0) break;
    out.write(block.data(), static_cast<std::streamsize>(got));
  }
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
  return path;
}

void CopyStandardInput(const std::string& path) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) throw std::runtime_error("cannot create " + path);
  out << std::cin.rdbuf();
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
}

}  // namespace

LocalTrace::LocalTrace(const std::string& name) {
  std::string plain = name;
  if (name == "-") {
    scratch_ = std::make_unique<ScratchDir>();
    plain = (scratch_->path() / "stdin.in").string();
    CopyStandardInput(plain);
  }
  if (!IsPacked(plain)) {
    if (name == "-") {
      path_ = (scratch_->path() / "stdin.trc").string();
      fs::rename(plain, path_);
    } else {
      path_ = name;
    }
    return;
  }
  if (!scratch_) scratch_ = std::make_unique<ScratchDir>();
  const fs::path unpacked = scratch_->path() / "unpacked";
  fs::create_directory(unpacked);
  path_ = Unpack(plain, name, unpacked);
}

LocalTrace::~LocalTrace() = default;

}  // namespace cli
