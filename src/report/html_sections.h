// The sections of the HTML report after the response-time table.
#ifndef PELICOR_REPORT_HTML_SECTIONS_H_
#define PELICOR_REPORT_HTML_SECTIONS_H_

#include <string>

#include "report/html_page.h"
#include "report/html_report.h"
#include "report/profile.h"

namespace report {

// The timeline of CPU and waits over the trace's clock, with its legend.
void TimelineSection(const Profile& profile, HtmlPage& page);
// Every wait event with its figures and duration histogram.
void EventsSection(const Profile& profile, HtmlPage& page);
// The top statements table, a section per top statement, and the table of the others.
void StatementsSections(const Profile& profile, const HtmlOptions& options, HtmlPage& page);
// The histogram's image, with the counts per bucket as its text.
std::string HistogramImage(const Histogram& histogram);

}  // namespace report

#endif  // PELICOR_REPORT_HTML_SECTIONS_H_
