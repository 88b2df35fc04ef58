// A trace parser that also builds the response-time profile while it reads: it files every
// record as CTraceParser does (the statements and every document stay the same) and shows
// each call, wait and session line to a ProfileBuilder in trace order.
#ifndef PELICOR_REPORT_PROFILING_PARSER_H_
#define PELICOR_REPORT_PROFILING_PARSER_H_

#include <string_view>

#include "parser/trace_parser.h"
#include "report/profile.h"
#include "report/profile_builder.h"

namespace report {

class ProfilingParser : public parser::CTraceParser {
 public:
  ProfilingParser() = default;

  void DispatchLine(std::string_view line) override;
  // The profile of what was parsed; call once, after a whole-input parse.
  Profile TakeProfile();

 protected:
  void ScanParsingInCursor(std::string_view line) override;
  void ScanParseError(std::string_view line) override;
  void ScanParse(std::string_view line) override;
  void ScanExec(std::string_view line) override;
  void ScanFetch(std::string_view line) override;
  void ScanWait(std::string_view line) override;
  void ScanClose(std::string_view line) override;
  void ScanXctend(std::string_view line) override;

 private:
  // The header facts and session changes a line tells.
  void NoteLine(std::string_view line);
  void NoteStarLine(std::string_view line);
  template <typename Record>
  void ObserveCall(ProfiledCall kind, std::string_view line, std::string_view keyword,
                   std::vector<Record> parser::TraceStatement::*calls);
  void BaseScan(ProfiledCall kind, std::string_view line);

  ProfileBuilder builder_;
  HeaderFacts header_;
  bool first_line_ = true;
};

}  // namespace report

#endif  // PELICOR_REPORT_PROFILING_PARSER_H_
