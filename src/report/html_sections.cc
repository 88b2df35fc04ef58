#include "report/html_sections.h"

#include <algorithm>

#include "report/figures_format.h"
#include "report/html_style.h"
#include "report/svg_images.h"

namespace report {

namespace {

constexpr int kTimelineWidth = 960, kTimelineHeight = 150;

std::size_t EventIndex(const Timeline& timeline, const std::string& name) {
  const auto found = std::find(timeline.event_names.begin(), timeline.event_names.end(), name);
  return static_cast<std::size_t>(found - timeline.event_names.begin());
}

// CPU, the largest non-idle events in the colours of the response-time table, the other
// non-idle events together, and the idle events together.
std::vector<TimelineSeries> SeriesOf(const Profile& profile, std::vector<std::string>* names) {
  const Timeline& timeline = profile.timeline;
  std::vector<TimelineSeries> series;
  series.push_back(TimelineSeries{std::string(kCpuColor), {}, true});
  names->push_back("CPU in database calls");
  TimelineSeries others{std::string(kOtherWaitColor), {}, false};
  TimelineSeries idle{std::string(kIdleColor), {}, false};
  std::size_t rank = 0;
  for (const EventFigures& e : profile.events) {
    const std::size_t index = EventIndex(timeline, e.name);
    if (index >= timeline.event_names.size()) continue;
    if (e.idle) {
      idle.events.push_back(index);
    } else if (rank < kEventColors) {
      series.push_back(TimelineSeries{std::string(EventColor(rank++)), {index}, false});
      names->push_back(e.name);
    } else {
      others.events.push_back(index);
    }
  }
  if (!others.events.empty()) {
    series.push_back(std::move(others));
    names->push_back("other waits");
  }
  if (!idle.events.empty()) {
    series.push_back(std::move(idle));
    names->push_back("idle, between calls");
  }
  return series;
}

}  // namespace

void TimelineSection(const Profile& profile, HtmlPage& page) {
  const Timeline& timeline = profile.timeline;
  if (timeline.slices.empty()) return;
  page.Raw("<h2 id=\"timeline\">Timeline</h2>\n");
  std::vector<std::string> names;
  const std::vector<TimelineSeries> series = SeriesOf(profile, &names);
  const Micros span = timeline.slice * static_cast<Micros>(timeline.slices.size());
  page.Raw("<p>" +
           ImageElement(TimelineSvg(timeline, series, kTimelineWidth, kTimelineHeight),
                        kTimelineWidth, kTimelineHeight, "Timeline of CPU and waits") +
           "</p>\n<p class=\"note\">" + std::to_string(timeline.slices.size()) + " columns of " +
           Milliseconds(timeline.slice) + " ms each, " + ShortSeconds(span) +
           " s of the trace clock from its first call; each column shows how much of its time "
           "went to each kind.</p>\n<p>");
  for (std::size_t i = 0; i < series.size(); ++i) {
    page.Swatch(series[i].color);
    page.Text(names[i]);
    page.Raw(i + 1 < series.size() ? " &nbsp; " : "");
  }
  page.Raw("</p>\n");
}

std::string HistogramImage(const Histogram& histogram) {
  std::string text;
  for (std::size_t i = 0; i < kHistogramBuckets; ++i) {
    text +=
        std::string(i == 0 ? "" : ", ") + HistogramLabel(i) + ": " + std::to_string(histogram[i]);
  }
  return ImageElement(HistogramSvg(histogram), 9 * static_cast<int>(kHistogramBuckets), 20,
                      HtmlText(text)) +
         " <span class=\"note\">" + HtmlText(text) + "</span>";
}

void EventsSection(const Profile& profile, HtmlPage& page) {
  if (profile.events.empty()) return;
  page.Raw(
      "<h2 id=\"events\">Wait events</h2>\n<table>\n<tr><th>Event</th><th>Kind</th>"
      "<th class=\"n\">Count</th><th class=\"n\">Total s</th><th class=\"n\">Average ms"
      "</th><th class=\"n\">Maximum ms</th><th>Durations (decades from &lt;1 us to "
      "&gt;=1 s)</th></tr>\n");
  for (const EventFigures& e : profile.events) {
    page.Raw("<tr><td>");
    page.Text(e.name);
    page.Raw(e.idle ? "</td><td>idle</td>" : "</td><td>in calls</td>");
    page.Number(Count(static_cast<std::int64_t>(e.count)));
    page.Number(ShortSeconds(e.total));
    page.Number(Milliseconds(e.Average()));
    page.Number(Milliseconds(e.max));
    page.Raw("<td>" + HistogramImage(e.histogram) + "</td></tr>\n");
  }
  page.Raw("</table>\n");
}

}  // namespace report
