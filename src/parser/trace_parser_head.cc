// CTraceParser: the release banner of a trace whose parse starts past it. A host that looked
// up a session's trace file parses from the size the file had then, and the banner stands in
// the first lines; without it a 9i trace would be divided as if it counted centiseconds.
#include <algorithm>
#include <fstream>

#include "parser/line_kind.h"
#include "parser/line_text.h"
#include "parser/trace_parser.h"

namespace parser {

namespace {

// The header ends where the first timestamp, separator or record line stands:
//   *** 2004-05-07 11:20:17.632
//   =====================
//   PARSING IN CURSOR #1 len=35 dep=0 ...
bool EndsHeader(std::string_view line) {
  const char first = CharAt(line, 0);
  if (first == '*' || first == '=') return true;
  const LineKind kind = ClassifyLine(line, DispatchState{});
  return kind != LineKind::kIgnored && kind != LineKind::kRelease &&
         kind != LineKind::kProcessNumber;
}

std::uint64_t HeadLength(std::uint64_t offset) {
  return std::min(offset, CTraceParser::kHeadBytes);
}

}  // namespace

void CTraceParser::TakeBannerFromHead(std::string_view head) {
  std::size_t start = 0;
  for (std::size_t end = head.find('\n'); end != std::string_view::npos;
       start = end + 1, end = head.find('\n', start)) {
    const std::string_view line = UpToNul(head.substr(start, end + 1 - start));
    if (EndsHeader(line)) return;
    if (ClassifyLine(line, DispatchState{}) == LineKind::kRelease) {
      TakeRelease(line);
      continue;
    }
    switch (ClassifyNewerForm(line)) {
      case LineKind::kDatabaseBanner:
        TakeNewerRelease(From(line, line.find(" Release ") + 9));
        break;
      case LineKind::kVersion:
        TakeNewerRelease(From(line, 8));
        break;
      default:
        break;
    }
  }
}

void CTraceParser::TakeBannerFromFileHead(const std::string& file_name, std::uint64_t offset) {
  if (offset == 0) return;  // the banner comes with the lines
  std::ifstream file(file_name, std::ios::in | std::ios::binary);
  std::string head(static_cast<std::size_t>(HeadLength(offset)), '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  TakeBannerFromHead(head);
}

// A source that cannot read the head (or a trace without a banner) leaves the release to the
// lines themselves and, for the aggregated writers, to the size of their tim values.
void CTraceParser::TakeBannerFromSourceHead(LineSource& source, const std::string& name,
                                            std::uint64_t offset) {
  if (offset == 0) return;
  std::string head;
  if (source.ReadHead(name, HeadLength(offset), &head)) TakeBannerFromHead(head);
}

void CTraceParser::NoteTim(std::int64_t tim) {
  constexpr std::int64_t kThirteenDigits = 1000000000000;
  if (tim >= kThirteenDigits || tim <= -kThirteenDigits) long_tim_seen_ = true;
}

int CTraceParser::MajorVersionForWriters() const {
  if (banner_major_version_ != 0 || release_seen_) return banner_major_version_;
  return long_tim_seen_ ? kMicrosecondClockVersion : 0;
}

}  // namespace parser
