// The style sheet of the HTML report, and the colours its charts and legends share.
#ifndef PELICOR_REPORT_HTML_STYLE_H_
#define PELICOR_REPORT_HTML_STYLE_H_

#include <cstddef>
#include <string_view>

namespace report {

extern const std::string_view kHtmlStyle;

inline constexpr std::string_view kCpuColor = "#2f6fb3";
inline constexpr std::string_view kUnaccountedColor = "#e3b341";
inline constexpr std::string_view kIdleColor = "#c9c9c9";
inline constexpr std::string_view kOtherWaitColor = "#7a7a7a";
inline constexpr std::size_t kEventColors = 6;
// The colour of the n-th largest non-idle event (n < kEventColors), else of the others.
std::string_view EventColor(std::size_t rank);

}  // namespace report

#endif  // PELICOR_REPORT_HTML_STYLE_H_
