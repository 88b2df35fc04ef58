// Memory figures of the running process, where the platform reports them.
#ifndef PELICOR_SUPPORT_OS_PROCESS_MEMORY_H_
#define PELICOR_SUPPORT_OS_PROCESS_MEMORY_H_

#include <cstdint>
#include <optional>

namespace os {

// Resident set size now, in bytes; nothing where the platform does not tell.
std::optional<std::uint64_t> ResidentMemoryBytes();

// The largest resident set size the process has had, in bytes.
std::optional<std::uint64_t> PeakResidentMemoryBytes();

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_PROCESS_MEMORY_H_
