// The charts of the HTML report: small SVG images, each held in the page itself as a data
// address (<img src="data:image/svg+xml,...">), so the page fetches nothing, shows its charts
// with scripts off, and stays plain HTML 4 markup for every checker. The images hold only
// shapes and numbers: every text a trace supplies stays in the page, escaped.
#ifndef PELICOR_REPORT_SVG_IMAGES_H_
#define PELICOR_REPORT_SVG_IMAGES_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "report/profile.h"

namespace report {

// An <img> element showing `svg`, with `alt` (already HTML-escaped) as its text.
std::string ImageElement(std::string_view svg, int width, int height, std::string_view alt);

// A horizontal bar of `share` (0..1, clamped) of `width` pixels.
std::string BarSvg(double share, int width, std::string_view color);
// Eight columns, one per duration decade, heights by count.
std::string HistogramSvg(const Histogram& histogram);

// One coloured series of the timeline: CPU, an event, or several events together.
struct TimelineSeries {
  std::string color;
  std::vector<std::size_t> events;  // indexes into Timeline::event_names; empty with cpu
  bool cpu = false;
};
// Stacked columns per slice: the share of the slice's time each series took.
std::string TimelineSvg(const Timeline& timeline, const std::vector<TimelineSeries>& series,
                        int width, int height);

// The width in pixels of a bar of `share` in a chart `width` pixels wide, as BarSvg draws it.
double BarWidth(double share, int width);

}  // namespace report

#endif  // PELICOR_REPORT_SVG_IMAGES_H_
