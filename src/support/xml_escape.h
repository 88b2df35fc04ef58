// XML attribute escaping as every document of Pelicor writes it: '&', '<', '>' and '"' become
// "&amp;", "&lt;", "&gt;" and "&quot;"; the apostrophe is left alone (our attributes are always
// double-quoted). Each '&' of the input is replaced once. Bytes that are not UTF-8 and control
// characters are made well-formed as support/xml_text.h says.
#ifndef PELICOR_SUPPORT_XML_ESCAPE_H_
#define PELICOR_SUPPORT_XML_ESCAPE_H_

#include <string>
#include <string_view>

namespace support {

// Appends `text`, escaped, to `out`. Runs of safe characters are copied in one piece.
void AppendXmlEscaped(std::string* out, std::string_view text);

// Returns an escaped copy of `text`.
std::string XmlEscaped(std::string_view text);

}  // namespace support

#endif  // PELICOR_SUPPORT_XML_ESCAPE_H_
