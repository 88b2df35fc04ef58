// `pelicor html`: the profile as one self-contained HTML page (inline CSS, charts as SVG
// images held in the page, no script, nothing fetched), readable on a laptop screen and
// printable. The `top` statements get a section each; the others share one table, so the page
// stays small whatever the trace's size.
#ifndef PELICOR_REPORT_HTML_REPORT_H_
#define PELICOR_REPORT_HTML_REPORT_H_

#include <cstddef>
#include <string>

#include "report/profile.h"

namespace report {

struct HtmlOptions {
  std::size_t top = 20;
  std::size_t other_rows = 500;  // rows of the table of the other statements
};

std::string HtmlReport(const Profile& profile, const HtmlOptions& options);

// The width of the bar of a response-time table line of this share, in pixels.
double ProfileBarWidth(double share);

}  // namespace report

#endif  // PELICOR_REPORT_HTML_REPORT_H_
