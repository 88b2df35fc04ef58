#include "report/html_style.h"

namespace report {

const std::string_view kHtmlStyle = R"(
body { font: 14px/1.4 -apple-system, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif;
       color: #222; margin: 1.5em auto; max-width: 1180px; padding: 0 1em; }
h1 { font-size: 1.6em; margin-bottom: 0.2em; }
h2 { font-size: 1.25em; border-bottom: 2px solid #2f6fb3; padding-bottom: 0.15em; margin-top: 1.8em; }
h3 { font-size: 1.05em; margin: 1.2em 0 0.4em; }
p.file { color: #555; margin-top: 0; word-break: break-all; }
table { border-collapse: collapse; margin: 0.4em 0 0.8em; }
th, td { padding: 2px 8px; border-bottom: 1px solid #e4e4e4; vertical-align: middle; }
th { background: #f1f4f8; text-align: left; font-weight: 600; }
td.n, th.n { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
tr.total td { font-weight: 600; border-top: 2px solid #999; }
tr.group td { background: #f7f7f7; font-style: italic; }
table.facts th { background: none; font-weight: 600; padding-right: 1.5em; }
pre.sql { background: #f6f8fa; border: 1px solid #dde; padding: 0.6em; white-space: pre-wrap;
          word-break: break-word; max-height: 24em; overflow: auto; font-size: 13px; }
td.sql { font-family: ui-monospace, Menlo, Consolas, monospace; font-size: 12px; max-width: 40em;
         overflow-wrap: anywhere; }
td.val { font-family: ui-monospace, Menlo, Consolas, monospace; font-size: 12px; overflow-wrap: anywhere; }
span.swatch { display: inline-block; width: 0.9em; height: 0.9em; vertical-align: -0.1em;
              margin-right: 0.35em; border: 1px solid #0002; }
div.statement { border-left: 4px solid #2f6fb3; padding-left: 1em; margin: 1.5em 0; }
div.columns { display: flex; flex-wrap: wrap; gap: 0 2.5em; }
.note { color: #666; font-size: 12px; }
img { vertical-align: middle; }
@media print {
  body { max-width: none; margin: 0; font-size: 11px; }
  div.statement { page-break-inside: avoid; }
  pre.sql { max-height: none; overflow: visible; }
}
)";

std::string_view EventColor(std::size_t rank) {
  static constexpr std::string_view kColors[kEventColors] = {"#d9534f", "#f0ad4e", "#5cb85c",
                                                             "#8e6bbf", "#46b8da", "#b5651d"};
  return rank < kEventColors ? kColors[rank] : kOtherWaitColor;
}

}  // namespace report
