// The scanners of STAT and WAIT lines, whose last field is free text with blanks in it.
#include <algorithm>

#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/strict_fields.h"

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

namespace {

// line.find("ela", from), without a library call for each 'e' of the event's name.
std::size_t FindEla(std::string_view line, std::size_t from) {
  const StrictFields text(line);
  for (const char* at = text.Find('e', line.data() + from); text.end() - at >= 3;
       at = text.Find('e', at + 1)) {
    if (at[1] == 'l' && at[2] == 'a') return static_cast<std::size_t>(at - line.data());
  }
  return std::string_view::npos;
}

// The parameters behind ela: the older form's " p1=4 p2=1234 p3=1" and nothing after them
// (false), or three named ones, the object and the wait's own time (true):
//   ela= 12 file#=4 block#=1234 blocks=1 obj#=75 tim=1156390959552
bool ScanStrictWaitParameters(StrictFields& scan, WaitRecord* wait, bool* named) {
  *named = !scan.Literal(" p1=");
  if (!*named) {
    return scan.Int64(&wait->p1) && scan.Literal(" p2=") && scan.Int64(&wait->p2) &&
           scan.Literal(" p3=") && scan.Int64(&wait->p3) && scan.AtBlankEnd();
  }
  for (std::int64_t* value : {&wait->p1, &wait->p2, &wait->p3}) {
    if (!scan.Literal(" ") || !scan.SkipName() || !scan.Literal("=") || !scan.Int64(value)) {
      return false;
    }
  }
  return scan.Literal(" obj#=") && scan.SkipNumber() && scan.Literal(" tim=") &&
         scan.Int64(&wait->tim) && scan.AtBlankEnd();
}

// The line as the server writes it; false, and *record untouched, for any other text. The name
// ends where the general scanner ends it: two characters before the first "ela" behind "nam=".
bool ScanStrictWait(std::string_view line, WaitRecord* record, bool* named) {
  StrictFields head(line);
  WaitRecord wait;
  if (!head.Literal("WAIT #") || !head.Cursor(&wait.cursor) || !head.Literal(": nam='")) {
    return false;
  }
  const std::size_t name_start = head.position();
  const std::size_t ela = FindEla(line, name_start - 5);
  if (ela == std::string_view::npos) return false;
  StrictFields rest(line.substr(ela));
  if (!rest.Literal("ela= ") || !rest.Int64(&wait.ela) ||
      !ScanStrictWaitParameters(rest, &wait, named)) {
    return false;
  }
  record->cursor = wait.cursor;
  if (ela >= name_start + 2) record->nam = line.substr(name_start, ela - 2 - name_start);
  record->ela = wait.ela;
  record->p1 = wait.p1;
  record->p2 = wait.p2;
  record->p3 = wait.p3;
  if (*named) record->tim = wait.tim;
  return true;
}

}  // namespace

bool ScanWaitOwnTime(std::string_view line, WaitRecord* record) {
  bool named = false;
  if (ScanStrictWait(line, record, &named)) return named;
  std::size_t ela = 0;
  const std::size_t scanned = ScanWaitFields(line, record, &ela);
  const bool older_form = scanned != std::string_view::npos && IsBlank(From(line, scanned));
  return !older_form && ela != std::string_view::npos &&
         ScanNamedWaitFields(line.substr(ela), record);
}

}  // namespace parser
