#include "cli/output.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/os/pending_file.h"
#include "support/os/system_error_text.h"

namespace cli {

namespace {

std::ifstream OpenSource(const std::string& source) {
  std::ifstream in(source, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + source + ": " + os::ErrnoText(errno));
  return in;
}

// Hands `write` the bytes of `in` block by block.
template <typename Write>
void CopyBlocks(std::ifstream& in, const std::string& source, Write&& write) {
  std::array<char, 1 << 16> block;
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
    write(std::string_view(block.data(), static_cast<std::size_t>(in.gcount())));
  }
  if (in.bad()) throw std::runtime_error("cannot read " + source);
}

class TargetFile {
 public:
  explicit TargetFile(const std::string& target) {
    std::string error;
    if (!file_.Create(target, &error)) {
      throw std::runtime_error("cannot create " + target + ": " + error);
    }
  }
  void Write(std::string_view bytes) {
    std::string error;
    if (!file_.Write(bytes.data(), bytes.size(), &error)) Fail(error);
  }
  void Commit() {
    std::string error;
    if (!file_.Commit(&error)) Fail(error);
  }

 private:
  [[noreturn]] void Fail(const std::string& error) {
    throw std::runtime_error("cannot write " + file_.target() + ": " + error);
  }
  os::PendingFile file_;  // removed again unless committed
};

void WriteStandardOutput(std::string_view bytes) {
  std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

void FinishStandardOutput() {
  std::cout.flush();
  if (std::cout) return;
  // The stream keeps no reason of its own: the failed write that stopped it left its code in
  // errno (a stream in error does not call the system again).
  const int error = errno;
  throw std::runtime_error("cannot write to standard output" +
                           (error != 0 ? ": " + os::ErrnoText(error) : std::string()));
}

void DeliverFile(const std::string& source, const std::string& target) {
  std::ifstream in = OpenSource(source);
  if (target.empty()) {
    CopyBlocks(in, source, WriteStandardOutput);
    FinishStandardOutput();
    return;
  }
  TargetFile out(target);
  CopyBlocks(in, source, [&out](std::string_view bytes) { out.Write(bytes); });
  out.Commit();
}

void DeliverListing(const std::string& source, const std::string& target) {
  std::ifstream in = OpenSource(source);
  const std::string text(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
  std::string lines;
  lines.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') lines += text[i];
  }
  if (target.empty()) {
    WriteStandardOutput(lines);
    FinishStandardOutput();
    return;
  }
  TargetFile out(target);
  out.Write(lines);
  out.Commit();
}

}  // namespace cli
