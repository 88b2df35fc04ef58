// Seconds since 1970 (UTC), as remote servers report file times, in the machine's local time.
#ifndef PELICOR_SUPPORT_OS_LOCAL_TIME_H_
#define PELICOR_SUPPORT_OS_LOCAL_TIME_H_

#include <cstdint>

#include "support/os/dir_search.h"

namespace os {

// All fields 0 when the platform cannot convert the time.
LocalTime LocalTimeOfUnixSeconds(std::int64_t seconds);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_LOCAL_TIME_H_
