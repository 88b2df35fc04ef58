#include "support/os/process_memory.h"

#ifdef _WIN32
#include <windows.h>
// psapi.h needs the types of windows.h first.
#include <psapi.h>
#else
#include <cstdio>
#include <cstring>
#endif

namespace os {

#ifdef _WIN32

namespace {
std::optional<PROCESS_MEMORY_COUNTERS> Counters() {
  PROCESS_MEMORY_COUNTERS counters{};
  if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return std::nullopt;
  return counters;
}
}  // namespace

std::optional<std::uint64_t> ResidentMemoryBytes() {
  if (auto counters = Counters()) return counters->WorkingSetSize;
  return std::nullopt;
}

std::optional<std::uint64_t> PeakResidentMemoryBytes() {
  if (auto counters = Counters()) return counters->PeakWorkingSetSize;
  return std::nullopt;
}

#else

namespace {
// Reads one "Key:   1234 kB" line of /proc/self/status.
std::optional<std::uint64_t> StatusKilobytes(const char* key) {
  std::FILE* status = std::fopen("/proc/self/status", "r");
  if (status == nullptr) return std::nullopt;
  char line[256];
  std::optional<std::uint64_t> result;
  const std::size_t key_length = std::strlen(key);
  while (std::fgets(line, sizeof line, status) != nullptr) {
    if (std::strncmp(line, key, key_length) != 0 || line[key_length] != ':') continue;
    unsigned long long kilobytes = 0;
    if (std::sscanf(line + key_length + 1, "%llu", &kilobytes) == 1) result = kilobytes * 1024;
    break;
  }
  std::fclose(status);
  return result;
}
}  // namespace

std::optional<std::uint64_t> ResidentMemoryBytes() {
  return StatusKilobytes("VmRSS");
}
std::optional<std::uint64_t> PeakResidentMemoryBytes() {
  return StatusKilobytes("VmHWM");
}

#endif

}  // namespace os
