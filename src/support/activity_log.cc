#include "support/activity_log.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <mutex>
#include <optional>
#include <utility>

#include "support/os/process_memory.h"
#include "support/xml_escape.h"

namespace support {

namespace {

// The log is the one piece of process-wide state the library has: exceptions are made deep
// inside every subsystem and carry no context to find a log through. It is guarded by a mutex.
struct LogState {
  std::mutex mutex;
  std::ofstream file;
  std::atomic<bool> enabled{false};
};

LogState& State() {
  static LogState state;
  return state;
}

// Days since 1970-01-01 to a civil date (proleptic Gregorian), after H. Hinnant's algorithm;
// keeps the timestamp free of the platform's non-reentrant time functions.
void CivilFromDays(std::int64_t days, int* year, unsigned* month, unsigned* day) {
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const auto doe = static_cast<unsigned>(days - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  *day = doy - (153 * mp + 2) / 5 + 1;
  *month = mp < 10 ? mp + 3 : mp - 9;
  *year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (*month <= 2 ? 1 : 0));
}

std::string Padded(std::int64_t value, int width) {
  std::string digits = std::to_string(value);
  if (static_cast<int>(digits.size()) < width) {
    digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
  }
  return digits;
}

std::string UtcTimestamp(std::chrono::system_clock::time_point when) {
  const auto micros =
      std::chrono::duration_cast<std::chrono::microseconds>(when.time_since_epoch()).count();
  const std::int64_t seconds = micros / 1000000;
  const std::int64_t days = seconds / 86400;
  const std::int64_t in_day = seconds % 86400;
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  CivilFromDays(days, &year, &month, &day);
  return Padded(year, 4) + "-" + Padded(month, 2) + "-" + Padded(day, 2) + "T" +
         Padded(in_day / 3600, 2) + ":" + Padded(in_day / 60 % 60, 2) + ":" +
         Padded(in_day % 60, 2) + "." + Padded(micros % 1000000, 6) + "Z";
}

void AppendAttribute(std::string* out, const char* name, const std::string& value) {
  out->append(" ").append(name).append("=\"");
  AppendXmlEscaped(out, value);
  out->append("\"");
}

}  // namespace

bool ActivityLog::Enable(const std::string& path, std::string* error) {
  LogState& state = State();
  std::lock_guard<std::mutex> lock(state.mutex);
  if (state.file.is_open()) {
    state.file << "</ACTIVITYLOG>\n";
    state.file.close();
  }
  state.file.open(path, std::ios::out | std::ios::trunc);
  if (!state.file.is_open()) {
    state.enabled = false;
    if (error != nullptr) {
      *error = "cannot create the activity log " + path + ": " + std::strerror(errno);
    }
    return false;
  }
  state.file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ACTIVITYLOG>\n";
  state.file.flush();
  state.enabled = true;
  return true;
}

void ActivityLog::Disable() {
  LogState& state = State();
  std::lock_guard<std::mutex> lock(state.mutex);
  state.enabled = false;
  if (state.file.is_open()) {
    state.file << "</ACTIVITYLOG>\n";
    state.file.close();
  }
}

bool ActivityLog::IsEnabled() noexcept {
  return State().enabled.load(std::memory_order_relaxed);
}

ActivityRecord::ActivityRecord(std::string file, std::string class_name, std::string method)
    : start_(std::chrono::system_clock::now()),
      started_(std::chrono::steady_clock::now()),
      file_(std::move(file)),
      class_(std::move(class_name)),
      method_(std::move(method)) {}

void ActivityRecord::Add(std::string text) {
  messages_.push_back(std::move(text));
}

ActivityRecord::~ActivityRecord() {
  if (!ActivityLog::IsEnabled()) return;
  const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - started_);
  std::string text = "<RECORD";
  AppendAttribute(&text, "start", UtcTimestamp(start_));
  AppendAttribute(&text, "duration_us", std::to_string(duration.count()));
  if (const std::optional<std::uint64_t> rss = os::ResidentMemoryBytes()) {
    AppendAttribute(&text, "rss_kb", std::to_string(*rss / 1024));
  }
  AppendAttribute(&text, "file", file_);
  AppendAttribute(&text, "class", class_);
  AppendAttribute(&text, "method", method_);
  text.append(">\n");
  for (const std::string& message : messages_) {
    text.append("<MESSAGE>");
    AppendXmlEscaped(&text, message);
    text.append("</MESSAGE>\n");
  }
  text.append("</RECORD>\n");

  LogState& state = State();
  std::lock_guard<std::mutex> lock(state.mutex);
  if (!state.file.is_open()) return;
  state.file << text;
  state.file.flush();
}

}  // namespace support
