// The scanners of a BINDS block in the 8i/9i layout:
//   BINDS #2:
//    bind 0: dty=2 mxl=22(22) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0
//      bfp=0a4f1c08 bln=22 avl=02 flg=05
//      value=59
#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/strict_fields.h"

namespace parser {

void ScanBindsLine(std::string_view line, CursorNo* cursor) {
  FieldScanner(line).Literal("BINDS #").Cursor(cursor).Literal(":");
}

namespace {

// The line as the server writes it (see strict_fields.h); false, and *record untouched, for any
// other text.
bool ScanStrictBindDefinitionLine(std::string_view line, BindRecord* record) {
  StrictFields scan(line);
  BindRecord bind;
  if (!(scan.Literal(" bind ") && scan.Int32(&bind.bind) && scan.Literal(": dty=") &&
        scan.Int32(&bind.dty) && scan.Literal(" mxl=") && scan.Int32(&bind.mxl) &&
        scan.Literal("(") && scan.Int32(&bind.pl) && scan.Literal(") mal=") &&
        scan.Int32(&bind.mal) && scan.Literal(" scl=") && scan.Int32(&bind.scl) &&
        scan.Literal(" pre=") && scan.Int32(&bind.pre) && scan.Literal(" oacflg=") &&
        scan.Int32(&bind.oacflg) && scan.Literal(" oacfl2=") && scan.Int32(&bind.oacfl2) &&
        scan.Literal(" size=") && scan.Int32(&bind.size) && scan.Literal(" offset=") &&
        scan.Int32(&bind.offset))) {
    return false;
  }
  record->bind = bind.bind;
  record->dty = bind.dty;
  record->mxl = bind.mxl;
  record->pl = bind.pl;
  record->mal = bind.mal;
  record->scl = bind.scl;
  record->pre = bind.pre;
  record->oacflg = bind.oacflg;
  record->oacfl2 = bind.oacfl2;
  record->size = bind.size;
  record->offset = bind.offset;
  return true;
}

}  // namespace

void ScanBindDefinitionLine(std::string_view line, BindRecord* record) {
  if (ScanStrictBindDefinitionLine(line, record)) return;
  FieldScanner(line)
      .Literal(" bind ")
      .Int32(&record->bind)
      .Literal(": dty=")
      .Int32(&record->dty)
      .Literal(" mxl=")
      .Int32(&record->mxl)
      .Literal("(")
      .Int32(&record->pl)
      .Literal(") mal=")
      .Int32(&record->mal)
      .Literal(" scl=")
      .Int32(&record->scl)
      .Literal(" pre=")
      .Int32(&record->pre)
      .Literal(" oacflg=")
      .Int32(&record->oacflg)
      .Literal(" oacfl2=")
      .Int32(&record->oacfl2)
      .Literal(" size=")
      .Int32(&record->size)
      .Literal(" offset=")
      .Int32(&record->offset);
}

void ScanBindBufferLine(std::string_view line, BindRecord* record) {
  FieldScanner(line)
      .Literal("   bfp=")
      .Word(&record->bfp)
      .Literal(" bln=")
      .Int32(&record->bln)
      .Literal(" avl=")
      .Int32(&record->avl)
      .Literal(" flg=")
      .Int32(&record->flg);
}

void ScanBindValueLine(std::string_view line, BindRecord* record) {
  const std::size_t quote = line.find('"');
  if (quote == std::string_view::npos) {
    FieldScanner(line).Literal("   value=").Word(&record->value);
    return;
  }
  // value="EMP" : from behind the first quote, without the closing quote and the newline.
  const std::size_t start = quote + 1;
  const std::size_t end = line.size() >= 2 ? line.size() - 2 : 0;
  record->value.assign(start < end ? line.substr(start, end - start) : std::string_view());
}

}  // namespace parser
