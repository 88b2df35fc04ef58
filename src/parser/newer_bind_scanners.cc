// The scanners of a BINDS block in the layout of Oracle 10g and later:
//   BINDS #140641987987624:
//
//    Bind#0
//     oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00
//     oacflg=03 fl2=1000000 frm=01 csi=873 siz=24 off=0
//     kxsbbbfp=7fe9c3cf3450  bln=22  avl=06  flg=05
//     value=111242892
#include <cstring>

#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"

namespace parser {

namespace {

std::string_view TrimLeft(std::string_view text) {
  std::size_t n = 0;
  while (n < text.size() && IsScanSpace(text[n])) ++n;
  return text.substr(n);
}

std::string_view TrimLineEnd(std::string_view text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

template <std::size_t N>
bool StartsWith(std::string_view text, const char (&prefix)[N]) {
  return text.size() >= N - 1 && std::memcmp(text.data(), prefix, N - 1) == 0;
}

// The text behind "name=" where the name starts the line or follows white space ("flg=" must
// not be found inside "oacflg="); empty when the line has no such field.
std::string_view FieldValue(std::string_view line, std::string_view name) {
  for (std::size_t at = line.find(name); at != std::string_view::npos;
       at = line.find(name, at + 1)) {
    const std::size_t equals = at + name.size();
    if ((at == 0 || IsScanSpace(line[at - 1])) && CharAt(line, equals) == '=') {
      return line.substr(equals + 1);
    }
  }
  return {};
}

void IntField(std::string_view line, std::string_view name, std::int32_t* value) {
  const std::string_view text = FieldValue(line, name);
  if (!text.empty()) FieldScanner(text).Int32(value);
}

}  // namespace

// Half the lines of a 10g+ trace are bind lines: the first character of the text decides which
// comparison to make.
NewerBindLine ClassifyNewerBindLine(std::string_view line) {
  if (StartsWith(line, " Bind#")) return NewerBindLine::kPosition;
  const std::string_view text = TrimLeft(line);
  switch (CharAt(text, 0)) {
    case 'o':
      if (StartsWith(text, "oacdty=")) return NewerBindLine::kType;
      return StartsWith(text, "oacflg=") ? NewerBindLine::kFlags : NewerBindLine::kOther;
    case 'k':
      return StartsWith(text, "kxsbbbfp=") ? NewerBindLine::kBuffer : NewerBindLine::kOther;
    case 'v':
      if (!StartsWith(text, "value=")) return NewerBindLine::kOther;
      // 11.2.0.4 can run an empty value into the next bind: "  value= Bind#1".
      return StartsWith(TrimLeft(text.substr(6)), "Bind#") ? NewerBindLine::kPosition
                                                           : NewerBindLine::kValue;
    case 'N':
      return StartsWith(text, "No oacdef for this bind") ? NewerBindLine::kNoDefinition
                                                         : NewerBindLine::kOther;
    default:
      return NewerBindLine::kOther;
  }
}

void ScanBindPositionLine(std::string_view line, BindRecord* record) {
  const std::size_t at = line.find("Bind#");
  if (at != std::string_view::npos) FieldScanner(line.substr(at + 5)).Int32(&record->bind);
}

// Each line is read first in the order the releases seen write it; only a line that does not
// follow that order is searched field by field (which gives the same values for a line in order).

//   oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00
void ScanBindTypeLine(std::string_view line, BindRecord* record) {
  std::int32_t mxlc = 0;
  if (FieldScanner(line)
          .Literal(" oacdty=")
          .Int32(&record->dty)
          .Literal(" mxl=")
          .Int32(&record->mxl)
          .Literal("(")
          .Int32(&record->pl)
          .Literal(") mxlc=")
          .Int32(&mxlc)
          .Literal(" mal=")
          .Int32(&record->mal)
          .Literal(" scl=")
          .Int32(&record->scl)
          .Literal(" pre=")
          .Int32(&record->pre)
          .ok()) {
    return;
  }
  IntField(line, "oacdty", &record->dty);
  const std::string_view mxl = FieldValue(line, "mxl");
  if (!mxl.empty()) FieldScanner(mxl).Int32(&record->mxl).Literal("(").Int32(&record->pl);
  IntField(line, "mal", &record->mal);
  IntField(line, "scl", &record->scl);
  IntField(line, "pre", &record->pre);
}

//   oacflg=03 fl2=1000000 frm=01 csi=873 siz=24 off=0
void ScanBindFlagsLine(std::string_view line, BindRecord* record) {
  std::int32_t frm = 0;
  std::int32_t csi = 0;
  if (FieldScanner(line)
          .Literal(" oacflg=")
          .Int32(&record->oacflg)
          .Literal(" fl2=")
          .Int32(&record->oacfl2)
          .Literal(" frm=")
          .Int32(&frm)
          .Literal(" csi=")
          .Int32(&csi)
          .Literal(" siz=")
          .Int32(&record->size)
          .Literal(" off=")
          .Int32(&record->offset)
          .ok()) {
    return;
  }
  IntField(line, "oacflg", &record->oacflg);
  IntField(line, "fl2", &record->oacfl2);
  IntField(line, "siz", &record->size);
  IntField(line, "off", &record->offset);
}

//   kxsbbbfp=7fe9c3cf3450  bln=22  avl=06  flg=05
void ScanBindAddressLine(std::string_view line, BindRecord* record) {
  if (FieldScanner(line)
          .Literal(" kxsbbbfp=")
          .Word(&record->bfp)
          .Literal(" bln=")
          .Int32(&record->bln)
          .Literal(" avl=")
          .Int32(&record->avl)
          .Literal(" flg=")
          .Int32(&record->flg)
          .ok()) {
    return;
  }
  const std::string_view address = FieldValue(line, "kxsbbbfp");
  if (!address.empty()) FieldScanner(address).Word(&record->bfp);
  IntField(line, "bln", &record->bln);
  IntField(line, "avl", &record->avl);
  IntField(line, "flg", &record->flg);
}

//   value="SH"    value=111242892    value=0 54    value=""
bool ScanNewerBindValue(std::string_view line, BindRecord* record) {
  const std::string_view text = TrimLineEnd(FieldValue(line, "value"));
  if (!StartsWith(text, "\"")) {
    record->value.assign(text);
    return false;
  }
  const std::string_view quoted = text.substr(1);
  const bool closed = !quoted.empty() && quoted.back() == '"';
  record->value.assign(closed ? DropLast(quoted, 1) : quoted);
  return !closed;
}

bool ContinueBindValue(std::string_view line, BindRecord* record) {
  const std::string_view text = TrimLineEnd(line);
  const bool closed = !text.empty() && text.back() == '"';
  record->value += '\n';
  record->value.append(closed ? DropLast(text, 1) : text);
  return !closed;
}

}  // namespace parser
