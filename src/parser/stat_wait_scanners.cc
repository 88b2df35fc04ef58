// The scanners of STAT and WAIT lines, whose last field is free text with blanks in it.
#include <algorithm>

#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"

namespace parser {

namespace {

// What std::string_view::rfind answers; the library's compares the whole needle at every
// position from the end (a call each), which was a tenth of reading a 19c trace. `needle` is
// not empty.
std::size_t FindLast(std::string_view text, std::string_view needle,
                     std::size_t from = std::string_view::npos) {
  if (needle.size() > text.size()) return std::string_view::npos;
  std::size_t at = std::min(from, text.size() - needle.size());
  for (;; --at) {
    if (text[at] == needle[0] && text.compare(at, needle.size(), needle) == 0) return at;
    if (at == 0) return std::string_view::npos;
  }
}

}  // namespace

// STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=0 w=0 time=290 us)'
void ScanStatLine(std::string_view line, StatRecord* record) {
  std::string_view first_word;  // stays empty when the scan stops before op
  FieldScanner(line)
      .Literal("STAT #")
      .Cursor(&record->cursor)
      .Literal(" id=")
      .Int32(&record->id)
      .Literal(" cnt=")
      .Int32(&record->cnt)
      .Literal(" pid=")
      .Int32(&record->pid)
      .Literal(" pos=")
      .Int32(&record->pos)
      .Literal(" obj=")
      .Int32(&record->obj)
      .Literal(" op='")
      .Word(&first_word);
  // The op text runs on with blanks: take the line from the first place that word occurs (an
  // empty word occurs at the start) and cut the closing quote and the newline.
  const std::size_t from = line.find(first_word);
  record->op.assign(DropLast(From(line, from), 2));
}

// WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1
std::size_t ScanWaitFields(std::string_view line, WaitRecord* record, std::size_t* ela_at) {
  constexpr std::size_t kStopped = std::string_view::npos;
  if (ela_at != nullptr) *ela_at = kStopped;
  FieldScanner(line).Literal("WAIT #").Cursor(&record->cursor).Literal(":");
  const std::size_t nam = line.find("nam=");
  if (nam == std::string_view::npos) return kStopped;
  const std::size_t name_start = nam + 5;  // past "nam='"
  const std::size_t ela = line.find("ela", nam);
  if (ela == std::string_view::npos) return kStopped;
  if (ela_at != nullptr) *ela_at = ela;
  // The name ends two characters before "ela": the closing quote and the blank.
  if (ela >= name_start + 2) record->nam = line.substr(name_start, ela - 2 - name_start);
  FieldScanner scan(line.substr(ela));
  scan.Literal("ela= ")
      .Int64(&record->ela)
      .Literal(" p1=")
      .Int64(&record->p1)
      .Literal(" p2=")
      .Int64(&record->p2)
      .Literal(" p3=")
      .Int64(&record->p3);
  return scan.ok() ? ela + scan.position() : kStopped;
}

void ScanWaitLine(std::string_view line, WaitRecord* record) {
  ScanWaitFields(line, record, nullptr);
}

// WAIT #2: nam='PL/SQL lock timer' ela= 977343 duration=100 p2=0 p3=0 obj#=-1 tim=115639095955..
bool ScanNamedWaitFields(std::string_view rest, WaitRecord* record) {
  const std::size_t tim = FindLast(rest, " tim=");
  std::int64_t own_time = 0;
  if (tim == std::string_view::npos || !FieldScanner(rest.substr(tim + 5)).Int64(&own_time).ok()) {
    return false;
  }
  // The three parameters stand between ela's value and " obj#=" (or the time, if obj# is
  // missing); each value is the number behind the next '='.
  const std::size_t object = FindLast(rest, " obj#=", tim);
  const std::string_view fields = rest.substr(0, object < tim ? object : tim);
  FieldScanner ela_value(fields);
  std::int64_t ela_read = 0;
  ela_value.Literal("ela=").Int64(&ela_read);
  std::size_t at = ela_value.ok() ? ela_value.position() : fields.size();
  std::int64_t* const values[] = {&record->p1, &record->p2, &record->p3};
  for (std::int64_t* value : values) {
    *value = 0;
    const std::size_t equals = fields.find('=', at);
    if (equals == std::string_view::npos) continue;
    FieldScanner number(fields.substr(equals + 1));
    number.Int64(value);
    at = equals + 1 + number.position();
  }
  record->tim = own_time;
  return true;
}

bool ScanWaitOwnTime(std::string_view line, WaitRecord* record) {
  std::size_t ela = 0;
  const std::size_t scanned = ScanWaitFields(line, record, &ela);
  const bool older_form = scanned != std::string_view::npos && IsBlank(From(line, scanned));
  return !older_form && ela != std::string_view::npos &&
         ScanNamedWaitFields(line.substr(ela), record);
}

}  // namespace parser
