// `pelicor profile`: the response-time profile on a terminal, in 100 columns: the header
// facts, the response-time table, the top statements, and each top statement's calls, skew
// and waits.
#ifndef PELICOR_REPORT_PROFILE_TEXT_H_
#define PELICOR_REPORT_PROFILE_TEXT_H_

#include <cstddef>
#include <ostream>

#include "report/profile.h"

namespace report {

void WriteProfileText(const Profile& profile, std::size_t top, std::ostream& out);

}  // namespace report

#endif  // PELICOR_REPORT_PROFILE_TEXT_H_
