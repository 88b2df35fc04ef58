#include "report/svg_images.h"

#include <algorithm>
#include <cstdio>

namespace report {

namespace {

constexpr std::string_view kSvgOpen = "<svg xmlns='http://www.w3.org/2000/svg' ";

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

// The characters a data address in a double-quoted attribute must not hold as they are.
std::string DataAddress(std::string_view svg) {
  std::string address = "data:image/svg+xml,";
  for (const char c : svg) {
    switch (c) {
      case '%':
        address += "%25";
        break;
      case '#':
        address += "%23";
        break;
      case '<':
        address += "%3C";
        break;
      case '>':
        address += "%3E";
        break;
      case '"':
        address += "%22";
        break;
      case ' ':
        address += "%20";
        break;
      case '&':
        address += "%26";
        break;
      default:
        address += c;
    }
  }
  return address;
}

std::string Open(int width, int height) {
  const std::string w = std::to_string(width), h = std::to_string(height);
  return std::string(kSvgOpen) + "width='" + w + "' height='" + h + "' viewBox='0 0 " + w + " " +
         h + "'>";
}

std::string Rect(double x, double y, double width, double height, std::string_view color) {
  return "<rect x='" + Number(x) + "' y='" + Number(y) + "' width='" + Number(width) +
         "' height='" + Number(height) + "' fill='" + std::string(color) + "'/>";
}

}  // namespace

double BarWidth(double share, int width) {
  return std::clamp(share, 0.0, 1.0) * width;
}

std::string ImageElement(std::string_view svg, int width, int height, std::string_view alt) {
  return "<img src=\"" + DataAddress(svg) + "\" width=\"" + std::to_string(width) + "\" height=\"" +
         std::to_string(height) + "\" alt=\"" + std::string(alt) + "\">";
}

std::string BarSvg(double share, int width, std::string_view color) {
  return Open(width, 14) + Rect(0, 2, BarWidth(share, width), 10, color) + "</svg>";
}

std::string HistogramSvg(const Histogram& histogram) {
  constexpr int kColumn = 9, kHeight = 20;
  const std::uint64_t largest = *std::max_element(histogram.begin(), histogram.end());
  std::string svg = Open(kColumn * static_cast<int>(kHistogramBuckets), kHeight);
  svg += Rect(0, kHeight - 1, kColumn * static_cast<int>(kHistogramBuckets), 1, "#999");
  for (std::size_t i = 0; i < kHistogramBuckets; ++i) {
    if (histogram[i] == 0 || largest == 0) continue;
    const double height =
        1.0 + (kHeight - 2.0) * static_cast<double>(histogram[i]) / static_cast<double>(largest);
    svg += Rect(static_cast<double>(i) * kColumn + 1, kHeight - 1 - height, kColumn - 2, height,
                "#5b8ec9");
  }
  return svg + "</svg>";
}

std::string TimelineSvg(const Timeline& timeline, const std::vector<TimelineSeries>& series,
                        int width, int height) {
  std::string svg = Open(width, height);
  svg += Rect(0, 0, width, height, "#fafafa");
  if (timeline.slices.empty() || timeline.slice <= 0) return svg + "</svg>";
  // Sessions in one file can overlap: the scale grows to the fullest slice when it is over 1.
  const auto amount = [&](const TimelineSlice& slice, const TimelineSeries& s) {
    Micros total = s.cpu ? slice.cpu : 0;
    for (const std::size_t e : s.events) total += slice.events[e];
    return static_cast<double>(total);
  };
  double fullest = 1.0;
  for (const TimelineSlice& slice : timeline.slices) {
    double sum = 0;
    for (const TimelineSeries& s : series) sum += amount(slice, s);
    fullest = std::max(fullest, sum / static_cast<double>(timeline.slice));
  }
  const double column = static_cast<double>(width) / static_cast<double>(timeline.slices.size());
  for (std::size_t i = 0; i < timeline.slices.size(); ++i) {
    double top = height;
    for (const TimelineSeries& s : series) {
      const double h =
          amount(timeline.slices[i], s) / static_cast<double>(timeline.slice) / fullest * height;
      if (h <= 0) continue;
      top -= h;
      svg += Rect(static_cast<double>(i) * column, top, column, h, s.color);
    }
  }
  return svg + "</svg>";
}

}  // namespace report
