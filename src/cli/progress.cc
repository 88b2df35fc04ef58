#include "cli/progress.h"

#include <cstdio>
#include <utility>

#include "support/os/terminal.h"

namespace cli {

namespace {
constexpr auto kRedrawInterval = std::chrono::milliseconds(200);
constexpr std::uint64_t kMegabyte = 1u << 20;
}  // namespace

ProgressMeter::ProgressMeter(std::string what, std::uint64_t total_bytes,
                             std::uint64_t threshold_bytes)
    : what_(std::move(what)),
      total_(total_bytes),
      enabled_(total_bytes >= threshold_bytes && os::StderrIsTerminal()) {}

ProgressMeter::~ProgressMeter() {
  if (drawn_) std::fputs("\r\033[K", stderr);
}

void ProgressMeter::Update(std::uint64_t done_bytes) {
  if (!enabled_) return;
  const auto now = std::chrono::steady_clock::now();
  if (drawn_ && now - last_draw_ < kRedrawInterval) return;
  last_draw_ = now;
  Draw(done_bytes);
}

void ProgressMeter::Draw(std::uint64_t done_bytes) {
  const std::uint64_t percent = total_ == 0 ? 100 : done_bytes * 100 / total_;
  std::fprintf(stderr, "\r%s: %3llu%% (%llu of %llu MB)\033[K", what_.c_str(),
               static_cast<unsigned long long>(percent),
               static_cast<unsigned long long>(done_bytes / kMegabyte),
               static_cast<unsigned long long>(total_ / kMegabyte));
  std::fflush(stderr);
  drawn_ = true;
}

}  // namespace cli
