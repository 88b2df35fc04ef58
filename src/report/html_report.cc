#include "report/html_report.h"

#include <algorithm>
#include <string_view>

#include "report/figures_format.h"
#include "report/html_page.h"
#include "report/html_sections.h"
#include "report/html_style.h"
#include "report/svg_images.h"

namespace report {

namespace {

constexpr int kProfileBarWidth = 300;

// The colour of each response-time line: CPU, the largest events in their own colours.
std::string_view ComponentColor(const Component& line, std::size_t* wait_rank) {
  switch (line.kind) {
    case ComponentKind::kCpu:
      return kCpuColor;
    case ComponentKind::kUnaccounted:
      return kUnaccountedColor;
    case ComponentKind::kIdle:
      return kIdleColor;
    case ComponentKind::kWait:
      break;
  }
  return EventColor((*wait_rank)++);
}

void HeaderFactsTable(const Profile& profile, HtmlPage& page) {
  const HeaderFacts& h = profile.header;
  page.Raw("<table class=\"facts\">\n");
  page.Fact("Trace file", h.file);
  page.Fact("Release", h.release);
  page.Fact("Version", h.version);
  page.Fact("Instance", h.instance);
  page.Fact("Node", h.node);
  page.Fact("Oracle process", h.process);
  page.Fact("Operating system process", h.os_process);
  page.Fact("Service", h.service);
  page.Fact("Module", h.module);
  page.Fact("Action", h.action);
  page.Fact("First timestamp", h.first_timestamp);
  std::string sessions;
  for (const SessionProfile& s : profile.sessions) {
    if (s.id.empty()) continue;
    sessions += (sessions.empty() ? "" : ", ") + s.id;
  }
  page.Fact("Sessions", sessions);
  page.Fact("Trace sections", h.sections > 1 ? std::to_string(h.sections) : "");
  page.Fact("Time unit", h.centiseconds ? "centiseconds (8i and earlier)" : "microseconds");
  page.Raw("</table>\n");
}

void ResponseTimeTable(const Profile& profile, HtmlPage& page) {
  page.Raw("<h2 id=\"profile\">Where the time went</h2>\n");
  page.Raw("<p>Response time <b>" + Seconds(profile.response_time) + " s</b> in " +
           std::to_string(profile.sessions.size()) +
           (profile.sessions.size() == 1 ? " session" : " sessions") + ", " +
           Count(static_cast<std::int64_t>(profile.calls)) + " database calls.</p>\n");
  page.Raw(
      "<table class=\"profile\">\n<tr><th>Component</th><th class=\"n\">Seconds</th>"
      "<th class=\"n\">Share</th><th class=\"n\">Count</th><th class=\"n\">Average ms</th>"
      "<th class=\"n\">Maximum ms</th><th>Share of the response time</th></tr>\n");
  std::size_t wait_rank = 0;
  bool idle_heading = false;
  for (const Component& line : profile.Components()) {
    if (line.kind == ComponentKind::kIdle && !idle_heading) {
      page.Raw("<tr class=\"group\"><td colspan=\"7\">Between calls (idle)</td></tr>\n");
      idle_heading = true;
    }
    const std::string_view color = ComponentColor(line, &wait_rank);
    std::string average, maximum;
    for (const EventFigures& e : profile.events) {
      if (line.kind != ComponentKind::kCpu && line.kind != ComponentKind::kUnaccounted &&
          e.name == line.name) {
        average = Milliseconds(e.Average());
        maximum = Milliseconds(e.max);
      }
    }
    page.Raw("<tr><td>");
    page.Swatch(color);
    page.Text(line.name);
    page.Raw("</td>");
    page.Number(ShortSeconds(line.time));
    page.Number(Percent(line.share));
    page.Number(line.count == 0 ? "" : Count(static_cast<std::int64_t>(line.count)));
    page.Number(average);
    page.Number(maximum);
    page.Raw("<td>" +
             ImageElement(BarSvg(line.share, kProfileBarWidth, color), kProfileBarWidth, 14,
                          Percent(line.share)) +
             "</td></tr>\n");
  }
  page.Raw("<tr class=\"total\"><td>Total response time</td>");
  page.Number(ShortSeconds(profile.response_time));
  page.Number(profile.response_time == 0 ? "" : "100.0%");
  page.Raw("<td colspan=\"4\"></td></tr>\n</table>\n");
  page.Raw(
      "<p class=\"note\">Response time runs from the start of the first database call (or wait) "
      "to the end of the last, per session. Unaccounted-for time is what neither CPU nor a wait "
      "explains: time in calls between the trace's figures, time between calls with no wait "
      "line, and CPU time the operating system counts in coarse ticks.</p>\n");
}

void SessionsTable(const Profile& profile, HtmlPage& page) {
  if (profile.sessions.size() < 2) return;
  page.Raw(
      "<h2 id=\"sessions\">Sessions</h2>\n<table>\n<tr><th>Session</th>"
      "<th class=\"n\">Response s</th><th class=\"n\">CPU s</th>"
      "<th class=\"n\">Calls</th><th>Largest wait</th></tr>\n");
  for (const SessionProfile& s : profile.sessions) {
    page.Raw("<tr><td>");
    page.Text(s.id.empty() ? std::string("(before any session line)") : s.id);
    page.Raw("</td>");
    page.Number(ShortSeconds(s.response_time));
    page.Number(ShortSeconds(s.cpu));
    page.Number(Count(static_cast<std::int64_t>(s.calls)));
    page.Raw("<td>");
    if (!s.events.empty()) page.Text(s.events.front().name);
    page.Raw("</td></tr>\n");
  }
  page.Raw("</table>\n");
}

}  // namespace

double ProfileBarWidth(double share) {
  return BarWidth(share, kProfileBarWidth);
}

std::string HtmlReport(const Profile& profile, const HtmlOptions& options) {
  HtmlPage page;
  page.Raw(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>");
  page.Text("Response-time profile: " + profile.header.file);
  page.Raw("</title>\n<style>");
  page.Raw(kHtmlStyle);
  page.Raw("</style>\n</head>\n<body>\n<h1>Response-time profile</h1>\n<p class=\"file\">");
  page.Text(profile.header.file);
  page.Raw("</p>\n");
  HeaderFactsTable(profile, page);
  ResponseTimeTable(profile, page);
  SessionsTable(profile, page);
  TimelineSection(profile, page);
  EventsSection(profile, page);
  StatementsSections(profile, options, page);
  page.Raw("<p class=\"note\">Written by pelicor.</p>\n</body>\n</html>\n");
  return page.Take();
}

}  // namespace report
