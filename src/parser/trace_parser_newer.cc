// CTraceParser: the line forms that Oracle 10g and later added to the trace.
#include "parser/field_scanner.h"
#include "parser/line_kind.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/trace_parser.h"

namespace parser {

namespace {

constexpr std::int64_t kMicroseconds = 1000000;

}  // namespace

// Oracle Database 11g Enterprise Edition Release 11.1.0.6.0 - 64bit Production
// Version 19.14.2.0.0
// These releases count in microseconds; the banner of 18c and later says "Release 19.0.0.0.0"
// and the Version line behind it gives the release update, with the same major version. After
// an 8i/9i banner such a line is something else ("Windows 2000 Version 5.1 Service Pack 2" cut
// to "Version 5.1 Service Pack 2", a banner quoted in a statement's text) and changes nothing.
void CTraceParser::TakeNewerRelease(std::string_view version) {
  if (older_banner_) return;
  release_seen_ = true;
  newer_forms_ = true;
  time_divisor_ = kMicroseconds;
  std::int32_t major = 0;
  if (FieldScanner(version).Int32(&major).ok()) banner_major_version_ = major;
}

void CTraceParser::NoteNewerForm() {
  if (newer_forms_ || release_seen_) return;  // a banner has said what the trace is
  newer_forms_ = true;
  time_divisor_ = kMicroseconds;
  banner_major_version_ = kNewerFormsVersion;
}

CallRecord CTraceParser::CountedFigures(const CallRecord& call) {
  return newer_forms_ ? recursive_calls_.OwnFigures(call) : call;
}

// A CLOSE ends no statement: a cursor closed into the session cursor cache (type 1 to 3) is
// executed again without a new PARSING IN CURSOR line, and a hard-closed one (type 0) gets a
// new PARSING IN CURSOR line before its number is used again, which closes the statement then.
// Like TKPROF, the totals have no row for it; it only moves the trace time on and claims the
// recursive calls made while closing, which are thus not counted into the next call.
void CTraceParser::ScanClose(std::string_view line) {
  CallRecord close;
  ScanCloseLine(line, &close);
  NoteNewerForm();
  current_time_ = close.tim;
  CountedFigures(close);
}

void CTraceParser::ScanXctend(std::string_view line) {
  std::int64_t tim = 0;
  if (!ScanXctendTime(line, &tim)) return;  // before 11.1.0.7: "XCTEND rlbk=0, rd_only=1"
  NoteNewerForm();
  current_time_ = tim;
}

namespace {

// One bind of a 10g+ block while its lines are read.
struct NewerBind {
  BindRecord record;
  bool open = false;        // a " Bind#n" line started it and it has a definition
  bool value_open = false;  // a quoted value goes on over the next lines
};

}  // namespace

// BINDS #140641987987624:
//
//  Bind#0
//   oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00
//   oacflg=03 fl2=1000000 frm=01 csi=873 siz=24 off=0
//   kxsbbbfp=7fe9c3cf3450  bln=22  avl=06  flg=05
// *** 2022-10-25T15:07:20.941104+02:00 (OPRD21(11))
//   value=111242892
//  Bind#1
//   No oacdef for this bind.
// EXEC #140641987987624:c=73,e=73,...
// The block goes on over timestamp lines, blank lines and anything else that is no record
// (value dumps) and ends at the first record line, which the dispatcher then reads in its turn:
// nothing is lost behind a block of this layout. A bind without definition gives no record.
void CTraceParser::ReadNewerBinds(TraceStatement* statement, CursorNo cursor, std::int32_t bind_set,
                                  std::string_view line) {
  const DispatchState state{session_timestamp_taken_, skip_binds_, skip_waits_};
  NewerBind bind;
  const auto finish = [&] {
    if (bind.open && statement != nullptr && !summary_only_) {
      statement->binds.push_back(std::move(bind.record));
    }
    bind = NewerBind{};
  };
  for (bool have_line = true; have_line; have_line = NextLine(&line)) {
    const NewerBindLine kind = ClassifyNewerBindLine(line);
    if (bind.value_open && kind != NewerBindLine::kPosition && !EndsNewerBindBlock(line, state)) {
      bind.value_open = ContinueBindValue(line, &bind.record);
      continue;
    }
    bind.value_open = false;
    if (EndsNewerBindBlock(line, state)) {
      finish();
      line_buffer_ = line;
      hand_back_ = true;
      return;
    }
    switch (kind) {
      case NewerBindLine::kPosition:
        finish();
        NoteNewerForm();
        bind.record.cursor = cursor;
        bind.record.bind_set = bind_set;
        ScanBindPositionLine(line, &bind.record);
        bind.open = true;
        break;
      // A summary-only parse keeps no bind record: these lines only have to be stepped over.
      case NewerBindLine::kType:
        if (!summary_only_) ScanBindTypeLine(line, &bind.record);
        break;
      case NewerBindLine::kFlags:
        if (!summary_only_) ScanBindFlagsLine(line, &bind.record);
        break;
      case NewerBindLine::kBuffer:
        if (!summary_only_) ScanBindAddressLine(line, &bind.record);
        break;
      case NewerBindLine::kValue:
        bind.value_open = ScanNewerBindValue(line, &bind.record);
        break;
      case NewerBindLine::kNoDefinition:
        bind.open = false;
        break;
      case NewerBindLine::kOther:
        break;
    }
  }
  finish();
  line_buffer_ = {};
}

}  // namespace parser
