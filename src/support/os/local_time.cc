#include "support/os/local_time.h"

#include <time.h>

namespace os {

LocalTime LocalTimeOfUnixSeconds(std::int64_t seconds) {
  LocalTime result;
  const auto when = static_cast<time_t>(seconds);
  struct tm calendar {};
#ifdef _WIN32
  const bool converted = localtime_s(&calendar, &when) == 0;
#else
  const bool converted = localtime_r(&when, &calendar) != nullptr;
#endif
  if (converted) {
    result = {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday,
              calendar.tm_hour,        calendar.tm_min,     calendar.tm_sec};
  }
  return result;
}

}  // namespace os
