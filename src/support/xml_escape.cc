#include "support/xml_escape.h"

#include "support/xml_text.h"

namespace support {

void AppendXmlEscaped(std::string* out, std::string_view text) {
  WriteXmlText(text, XmlPlace::kAttribute, [out](std::string_view piece) { out->append(piece); });
}

std::string XmlEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  AppendXmlEscaped(&out, text);
  return out;
}

}  // namespace support
