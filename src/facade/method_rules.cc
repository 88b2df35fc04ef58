#include "facade/method_rules.h"

#include <cstdint>

#include "support/trace_naming.h"

namespace facade {

bool AnyMissing(std::initializer_list<const char*> arguments) {
  for (const char* argument : arguments) {
    if (argument == nullptr) return true;
  }
  return false;
}

int RefuseArguments(const char* message, std::string* msg) {
  *msg = message;
  return 1;
}

std::string XmlFileName(const std::string& trace_file_name) {
  std::string name = trace_file_name;
  support::ConvertFilename(name);
  return name;
}

std::uint8_t BatchFlags(std::uint16_t flag) {
  return static_cast<std::uint8_t>(flag & 0xFFu);
}

}  // namespace facade
