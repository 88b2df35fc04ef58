// The scanners of the lines that open a statement or record one call on it.
#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/strict_fields.h"

namespace parser {

namespace {

// The line as the server writes it; false, and *record untouched, for any other text.
bool ScanStrictCallLine(std::string_view line, std::string_view keyword, CallRecord* record,
                        bool* plan_hash) {
  StrictFields scan(line);
  CallRecord call;
  if (!(scan.Literal(keyword) && scan.Cursor(&call.cursor) && scan.Literal(":c=") &&
        scan.Int64(&call.c) && scan.Literal(",e=") && scan.Int64(&call.e) && scan.Literal(",p=") &&
        scan.Int32(&call.p) && scan.Literal(",cr=") && scan.Int32(&call.cr) &&
        scan.Literal(",cu=") && scan.Int32(&call.cu) && scan.Literal(",mis=") &&
        scan.Int32(&call.mis) && scan.Literal(",r=") && scan.Int32(&call.r) &&
        scan.Literal(",dep=") && scan.Int32(&call.dep) && scan.Literal(",og=") &&
        scan.Int32(&call.og))) {
    return false;
  }
  *plan_hash = scan.Literal(",plh=");
  if (*plan_hash && !scan.SkipNumber()) return false;
  if (!scan.Literal(",tim=") || !scan.Int64(&call.tim)) return false;
  *record = call;
  return true;
}

}  // namespace

// FETCH #3:c=0,e=142,p=0,cr=4,cu=0,mis=0,r=1,dep=0,og=4,tim=1083929217634352
// From 11.1.0.7 on a plan hash stands between og and tim; it is stepped over so that tim is read:
// FETCH #140641987987624:c=0,e=45,p=0,cr=1,cu=0,mis=0,r=4,dep=0,og=1,plh=2725028981,tim=5793...
bool ScanCallLine(std::string_view line, std::string_view keyword, CallRecord* record) {
  bool plan_hash = false;
  if (ScanStrictCallLine(line, keyword, record, &plan_hash)) return plan_hash;
  FieldScanner scan(line);
  scan.Literal(keyword)
      .Cursor(&record->cursor)
      .Literal(":c=")
      .Int64(&record->c)
      .Literal(",e=")
      .Int64(&record->e)
      .Literal(",p=")
      .Int32(&record->p)
      .Literal(",cr=")
      .Int32(&record->cr)
      .Literal(",cu=")
      .Int32(&record->cu)
      .Literal(",mis=")
      .Int32(&record->mis)
      .Literal(",r=")
      .Int32(&record->r)
      .Literal(",dep=")
      .Int32(&record->dep)
      .Literal(",og=")
      .Int32(&record->og);
  const bool reached_og = scan.ok();
  const std::size_t after_og = scan.position();
  scan.Literal(",tim=").Int64(&record->tim);
  if (scan.ok() || !reached_og) return false;
  // Only a line that did not go on with tim is looked at again for the plan hash.
  FieldScanner rest(line.substr(after_og));
  if (!rest.LooksAt(",plh=")) return false;
  std::int64_t plh = 0;
  rest.Literal(",plh=").Int64(&plh).Literal(",tim=").Int64(&record->tim);
  return true;
}

// CLOSE #140641987987624:c=3,e=3,dep=0,type=1,tim=5793511831927
void ScanCloseLine(std::string_view line, CallRecord* record) {
  std::int32_t type = 0;
  FieldScanner(line)
      .Literal("CLOSE #")
      .Cursor(&record->cursor)
      .Literal(":c=")
      .Int64(&record->c)
      .Literal(",e=")
      .Int64(&record->e)
      .Literal(",dep=")
      .Int32(&record->dep)
      .Literal(",type=")
      .Int32(&type)
      .Literal(",tim=")
      .Int64(&record->tim);
}

// XCTEND rlbk=0, rd_only=1, tim=5793511831940
bool ScanXctendTime(std::string_view line, std::int64_t* tim) {
  const std::size_t at = line.find(", tim=");
  return at != std::string_view::npos && FieldScanner(line.substr(at + 6)).Int64(tim).ok();
}

// PARSING IN CURSOR #2 len=116 dep=1 uid=0 oct=3 lid=0 tim=1083929217636210 hv=2918884618
// ad='6b5a2c34'
void ScanCursorLine(std::string_view line, ParseInCursorRecord* record) {
  std::string_view ad;
  FieldScanner scan(line);
  record->cursor_known =
      scan.Literal("PARSING IN CURSOR #").Cursor(&record->cursor, &record->cursor_negative).ok();
  const bool has_ad = scan.Literal(" len=")
                          .Int32(&record->len)
                          .Literal(" dep=")
                          .Int32(&record->dep)
                          .Literal(" uid=")
                          .Int32(&record->uid)
                          .Literal(" oct=")
                          .Int32(&record->oct)
                          .Literal(" lid=")
                          .Int32(&record->lid)
                          .Literal(" tim=")
                          .Int64(&record->tim)
                          .Literal(" hv=")
                          .Int64(&record->hv)
                          .Literal(" ad='")
                          .Word(&ad)
                          .ok();
  // The word still ends in the closing quote.
  if (has_ad) record->ad.assign(DropLast(ad, 1));
}

// PARSE ERROR #3:len=17 dep=0 uid=5 oct=3 lid=5 tim=1083929217633781 err=942
void ScanParseErrorLine(std::string_view line, ParseErrorRecord* record) {
  FieldScanner scan(line);
  record->cursor_known =
      scan.Literal("PARSE ERROR #").Cursor(&record->cursor, &record->cursor_negative).ok();
  scan.Literal(":len=")
      .Int32(&record->len)
      .Literal(" dep=")
      .Int32(&record->dep)
      .Literal(" uid=")
      .Int64(&record->uid)
      .Literal(" oct=")
      .Int64(&record->oct)
      .Literal(" lid=")
      .Int64(&record->lid)
      .Literal(" tim=")
      .Int64(&record->tim)
      .Literal(" err=")
      .Int64(&record->err);
}

}  // namespace parser
