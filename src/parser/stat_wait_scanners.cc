// The scanners of STAT and WAIT lines, whose last field is free text with blanks in it.
#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"

namespace parser {

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
void ScanWaitLine(std::string_view line, WaitRecord* record) {
  FieldScanner(line).Literal("WAIT #").Cursor(&record->cursor).Literal(":");
  const std::size_t nam = line.find("nam=");
  if (nam == std::string_view::npos) return;
  const std::size_t name_start = nam + 5;  // past "nam='"
  const std::size_t ela = line.find("ela", nam);
  if (ela == std::string_view::npos) return;
  // The name ends two characters before "ela": the closing quote and the blank.
  if (ela >= name_start + 2) record->nam = line.substr(name_start, ela - 2 - name_start);
  FieldScanner(line.substr(ela))
      .Literal("ela= ")
      .Int64(&record->ela)
      .Literal(" p1=")
      .Int64(&record->p1)
      .Literal(" p2=")
      .Int64(&record->p2)
      .Literal(" p3=")
      .Int64(&record->p3);
}

}  // namespace parser
