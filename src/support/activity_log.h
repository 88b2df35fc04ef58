// The activity log: a process-wide, thread-safe XML file of timed records that a person can read.
// It is off by default and costs one atomic load per record while off. The library switches it
// on (and a host may, through the library); every exception writes a record while it is on.
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <ACTIVITYLOG>
//   <RECORD start="2026-11-21T11:30:00.123456Z" duration_us="12" rss_kb="5120"
//           file="ExceptionBase" class="exceptions::ExceptionBase" method="...">
//   <MESSAGE>TraceParser - CTraceParser::Parse - fopen - Trace parser failed ...</MESSAGE>
//   </RECORD>
//   </ACTIVITYLOG>
//
// rss_kb is left out where the platform does not report the resident memory.
#ifndef PELICOR_SUPPORT_ACTIVITY_LOG_H_
#define PELICOR_SUPPORT_ACTIVITY_LOG_H_

#include <chrono>
#include <string>
#include <vector>

namespace support {

class ActivityLog {
 public:
  // Starts a new log file at `path`, replacing any file there, and closes a log already open.
  // Returns false, with a message naming the file, when the file cannot be created.
  static bool Enable(const std::string& path, std::string* error);
  // Ends the document and closes the file; harmless when the log is off.
  static void Disable();
  static bool IsEnabled() noexcept;
};

// One record: opened at construction, written when it is destroyed (so its duration covers the
// work between). Writes nothing when the log is off at either end.
class ActivityRecord {
 public:
  ActivityRecord(std::string file, std::string class_name, std::string method);
  ActivityRecord(const ActivityRecord&) = delete;
  ActivityRecord& operator=(const ActivityRecord&) = delete;
  ~ActivityRecord();

  void Add(std::string text);

 private:
  std::chrono::system_clock::time_point start_;
  std::chrono::steady_clock::time_point started_;
  std::string file_;
  std::string class_;
  std::string method_;
  std::vector<std::string> messages_;
};

}  // namespace support

#endif  // PELICOR_SUPPORT_ACTIVITY_LOG_H_
