// The HTML report's page under construction: markup goes in as it is, trace text escaped.
#ifndef PELICOR_REPORT_HTML_PAGE_H_
#define PELICOR_REPORT_HTML_PAGE_H_

#include <string>
#include <string_view>
#include <utility>

#include "report/html_text.h"

namespace report {

class HtmlPage {
 public:
  void Raw(std::string_view markup) { out_.append(markup); }
  void Text(std::string_view text) { AppendHtmlText(&out_, text); }
  // <td class="n">figure</td>: figures are made by us, never by the trace.
  void Number(std::string_view figure) {
    out_.append("<td class=\"n\">").append(figure).append("</td>");
  }
  // A row of the header facts table; nothing when the trace did not tell.
  void Fact(std::string_view name, std::string_view value) {
    if (value.empty()) return;
    out_.append("<tr><th>").append(name).append("</th><td>");
    Text(value);
    out_.append("</td></tr>\n");
  }
  void Swatch(std::string_view color) {
    out_.append("<span class=\"swatch\" style=\"background:").append(color).append("\"></span>");
  }
  std::string Take() { return std::move(out_); }

 private:
  std::string out_;
};

}  // namespace report

#endif  // PELICOR_REPORT_HTML_PAGE_H_
