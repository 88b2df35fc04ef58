#include "support/xml_escape.h"

namespace support {

namespace {

std::string_view EntityFor(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return {};
  }
}

}  // namespace

void AppendXmlEscaped(std::string* out, std::string_view text) {
  std::size_t run_start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view entity = EntityFor(text[i]);
    if (entity.empty()) continue;
    out->append(text.substr(run_start, i - run_start));
    out->append(entity);
    run_start = i + 1;
  }
  out->append(text.substr(run_start));
}

std::string XmlEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  AppendXmlEscaped(&out, text);
  return out;
}

}  // namespace support
