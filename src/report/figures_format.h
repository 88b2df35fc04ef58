// Number formats shared by the profile's text and HTML forms.
#ifndef PELICOR_REPORT_FIGURES_FORMAT_H_
#define PELICOR_REPORT_FIGURES_FORMAT_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "report/profile.h"

namespace report {

// 1234567 us -> "1.234567" (seconds, six decimals, as exact as the trace).
std::string Seconds(Micros micros);
// 1234567 us -> "1.235" (seconds, three decimals, rounded).
std::string ShortSeconds(Micros micros);
// 1234 us -> "1.234" (milliseconds, three decimals).
std::string Milliseconds(Micros micros);
// 0.1234 -> "12.3%".
std::string Percent(double share);
// 1234567 -> "1,234,567".
std::string Count(std::int64_t count);
// "rows / executions" with one decimal; "-" without executions.
std::string PerExecution(std::int64_t total, std::uint64_t executions);
// The SQL text on one line: every run of white space becomes one blank, cut to `width`
// characters with "..." when longer.
std::string OneLine(std::string_view text, std::size_t width);

}  // namespace report

#endif  // PELICOR_REPORT_FIGURES_FORMAT_H_
