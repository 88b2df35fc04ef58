// Trace text made safe for an HTML page. A trace holds whatever bytes the database had: SQL
// text with "<script>" or "]]>" in it, bind values, names in the database character set. Every
// such string reaches the page through AppendHtmlText, which
//   - escapes '&', '<', '>', '"' and '\'' (so it is text in element content and in attributes),
//   - keeps valid UTF-8 as it is,
//   - reads a byte that is not part of valid UTF-8 as the Windows-1252 character it stands for
//     (the usual character set of such traces), and
//   - replaces control characters other than tab, line feed and carriage return by U+FFFD.
#ifndef PELICOR_REPORT_HTML_TEXT_H_
#define PELICOR_REPORT_HTML_TEXT_H_

#include <string>
#include <string_view>

namespace report {

void AppendHtmlText(std::string* out, std::string_view text);
std::string HtmlText(std::string_view text);

}  // namespace report

#endif  // PELICOR_REPORT_HTML_TEXT_H_
