#include "support/trace_naming.h"

#include <cstddef>

#include "support/exceptions.h"

namespace support {

namespace {
// The raise sites belong to the facade's source file, whatever directory holds the code.
constexpr const char* kFile = "Pelicor";
constexpr std::size_t kPidWidth = 5;
}  // namespace

void ConvertFilename(std::string& name) {
  if (name.find(".trc") == std::string::npos && name.find(".TRC") == std::string::npos) {
    throw exceptions::ExceptionBase(kFile, "ConvertFilename", "ConvertFilename",
                                    "Filename does not contain '.trc' !");
  }
  const std::size_t dot = name.find('.');
  // replace() takes at most what is left after the dot and inserts all of "xml", so a short
  // tail grows instead of being overrun.
  name.replace(dot + 1, 3, "xml");
}

std::string ConvertPID2TraceFilename(std::string_view pid) {
  if (pid.size() > kPidWidth) {
    throw exceptions::ExceptionBase(
        kFile, "ConvertPID2TraceFilename", "ConvertPID2TraceFilename",
        "The digits of PID is more than 5, which is not supported by this version!");
  }
  std::string converted(kPidWidth - pid.size(), '0');
  converted.append(pid);
  return converted;
}

}  // namespace support
