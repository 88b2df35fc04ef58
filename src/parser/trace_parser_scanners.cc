// CTraceParser: the dispatcher and the eight scanners, which file records under statements.
#include <cstdint>
#include <utility>

#include "parser/field_scanner.h"
#include "parser/line_kind.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/trace_parser.h"

namespace parser {

namespace {

// Trace times are summed without overflow traps: a corrupt ela must not stop the parse.
std::int64_t WrappingAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

}  // namespace

void CTraceParser::DispatchLine(std::string_view line) {
  while (DispatchOnce(line)) line = line_buffer_;
  if (closed_handler_ && !std::as_const(table_).closed().empty()) HandOverClosed();
}

void CTraceParser::HandOverClosed() {
  // The document's start needs both figures; merging may continue any closed statement; a batch
  // counts its closed statements.
  if (!session_timestamp_taken_ || first_cursor_time_pending_ || merge_identical_sql_ ||
      statement_limit_ != 0) {
    return;
  }
  StatementList& closed = table_.closed();
  while (!closed.empty() && !table_.IsCached(closed.front().get())) {
    if (!closed_handler_(closed.front())) {
      closed_handler_ = nullptr;  // declined: everything stays for the writers after the parse
      return;
    }
    closed.pop_front();
  }
}

bool CTraceParser::DispatchOnce(std::string_view line) {
  const DispatchState state{session_timestamp_taken_, skip_binds_, skip_waits_};
  LineKind kind = ClassifyLine(line, state);
  if (kind == LineKind::kIgnored) kind = ClassifyNewerForm(line);
  switch (kind) {
    case LineKind::kIgnored:
      break;
    case LineKind::kSessionTimestamp:
      TakeSessionTimestamp(line);
      break;
    case LineKind::kBinds:
      ScanBinds(line);
      if (hand_back_) {  // a 10g+ block: the line that ended it is a line like any other
        hand_back_ = false;
        return true;
      }
      // The line that ended the block is scanned only when it is an EXEC line; any other
      // (PARSE, WAIT, STAT) is lost, as the trace format's readers have always done.
      if (Contains(line_buffer_, "EXEC")) ScanExec(line_buffer_);
      break;
    case LineKind::kExec:
      ScanExec(line);
      break;
    case LineKind::kFetch:
      ScanFetch(line);
      break;
    case LineKind::kRelease:
      TakeRelease(line);
      break;
    case LineKind::kProcessNumber:
      CloseAll();  // a new trace section starts in the same file
      recursive_calls_.Clear();
      break;
    case LineKind::kParsingInCursor:
      ScanParsingInCursor(line);
      break;
    case LineKind::kParse:
      ScanParse(line);
      break;
    case LineKind::kParseError:
      ScanParseError(line);
      break;
    case LineKind::kStat:
      ScanStat(line);
      break;
    case LineKind::kWait:
      ScanWait(line);
      break;
    case LineKind::kDatabaseBanner:
      TakeNewerRelease(From(line, line.find(" Release ") + 9));
      break;
    case LineKind::kVersion:
      TakeNewerRelease(From(line, 8));
      break;
    case LineKind::kClose:
      ScanClose(line);
      break;
    case LineKind::kXctend:
      ScanXctend(line);
      break;
  }
  return false;
}

// *** SESSION ID:(9.1407) 2004-05-07 11:20:17.631
void CTraceParser::TakeSessionTimestamp(std::string_view line) {
  const std::size_t paren = line.find(')');
  session_timestamp_.assign(paren == std::string_view::npos ? std::string_view()
                                                            : From(line, paren + 2));
  session_timestamp_taken_ = true;
}

// Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production
// One character decides: '8' and below are centisecond releases. "Oracle10g" therefore counts
// as centiseconds too, which is how these traces have always been read. A banner of this form
// settles the trace's form: no later line makes it a 10g+ trace (see TakeNewerRelease).
void CTraceParser::TakeRelease(std::string_view line) {
  release_seen_ = true;
  older_banner_ = true;
  newer_forms_ = false;
  release_char_ = CharAt(line, 6);
  time_divisor_ = static_cast<signed char>(release_char_) <= '8' ? 100 : 1000000;
  const std::size_t release = line.find("Release ");
  if (release != std::string_view::npos) {
    std::int32_t major = 0;
    if (FieldScanner(line.substr(release + 8)).Int32(&major).ok()) banner_major_version_ = major;
  }
}

void CTraceParser::ScanParse(std::string_view line) {
  CallRecord call;
  if (ScanCall(line, LineKind::kParse, &call)) NoteNewerForm();
  current_time_ = call.tim;
  NoteTim(call.tim);
  const CallRecord counted = CountedFigures(call);
  if (TraceStatement* statement = StatementForCursor(call.cursor)) {
    if (!summary_only_) {
      statement->parse_calls.push_back(call);
    } else if (statement->totals[kParseTotals].count == 0) {
      statement->first_parse_mis = call.mis;
    }
    statement->totals[kParseTotals].Add(counted);
  }
}

void CTraceParser::ScanExec(std::string_view line) {
  ExecCallRecord call;
  if (ScanCall(line, LineKind::kExec, &call)) NoteNewerForm();
  current_time_ = call.tim;
  NoteTim(call.tim);
  const CallRecord counted = CountedFigures(call);
  if (TraceStatement* statement = StatementForCursor(call.cursor)) {
    call.exebnd = statement->bind_set_count - 1;
    if (!summary_only_) {
      statement->exec_calls.push_back(call);
    } else if (statement->totals[kExecTotals].count == 0) {
      statement->first_exec_og = call.og;
    }
    statement->totals[kExecTotals].Add(counted);
  }
}

void CTraceParser::ScanFetch(std::string_view line) {
  CallRecord call;
  if (ScanCall(line, LineKind::kFetch, &call)) NoteNewerForm();
  current_time_ = call.tim;
  NoteTim(call.tim);
  const CallRecord counted = CountedFigures(call);
  if (TraceStatement* statement = StatementForCursor(call.cursor)) {
    if (!summary_only_) statement->fetch_calls.push_back(call);
    statement->totals[kFetchTotals].Add(counted);
  }
}

void CTraceParser::ReadSqlText(std::int32_t len, std::string* text, bool until_end_of_statement) {
  const std::int64_t wanted = std::int64_t{len} - 2;
  std::string_view line;
  while (static_cast<std::int64_t>(text->size()) < wanted && NextLine(&line)) {
    if (until_end_of_statement && IsEndOfStatement(line)) break;
    text->append(line);
  }
}

void CTraceParser::ScanParsingInCursor(std::string_view line) {
  ParseInCursorRecord header;
  ScanCursorLine(line, &header);
  // 11g names the statement: "... ad='6db40e78' sqlid='0kmzfbupna0up'".
  if (!release_seen_ && Contains(line, " sqlid='")) NoteNewerForm();
  ReadSqlText(header.len, &header.text, newer_forms_);
  FileCursorHeader(std::move(header));
}

void CTraceParser::FileCursorHeader(ParseInCursorRecord header) {
  NoteTim(header.tim);
  if (first_cursor_time_pending_) {
    first_cursor_time_ = header.tim;
    first_cursor_time_pending_ = false;
  }
  const CursorNo cursor = header.cursor;
  CloseCursor(cursor);
  TraceStatement* statement = merge_identical_sql_ ? ReopenBySqlText(header.text) : nullptr;
  if (statement != nullptr) {
    // The header stays the one first seen.
    if (!table_.open().empty() && table_.open().back().get() == statement) {
      table_.RenumberLast(cursor);
    } else {
      statement->cursor = cursor;
    }
    statement->cursor_known = header.cursor_known;
    statement->cursor_negative = header.cursor_negative;
  } else {
    statement = table_.OpenNew(cursor);
    statement->cursor_known = header.cursor_known;
    statement->cursor_negative = header.cursor_negative;
    statement->header = std::move(header);
  }
  table_.Cache(cursor, statement);
  if (statement_limit_ != 0 &&
      static_cast<std::int64_t>(std::as_const(table_).closed().size()) >= statement_limit_) {
    stop_ = true;
  }
}

void CTraceParser::ScanParseError(std::string_view line) {
  ParseErrorRecord error;
  ScanParseErrorLine(line, &error);
  ReadSqlText(error.len, &error.text, false);
  const CursorNo cursor = error.cursor;
  CloseCursor(cursor);
  TraceStatement* statement = table_.OpenNew(cursor);
  statement->cursor_known = error.cursor_known;
  statement->cursor_negative = error.cursor_negative;
  statement->parse_error = std::move(error);
  statement->is_parse_error = true;
  table_.Cache(cursor, statement);
}

void CTraceParser::ScanStat(std::string_view line) {
  StatRecord stat;
  ScanStatLine(line, &stat);
  if (TraceStatement* statement = StatementForCursor(stat.cursor)) {
    statement->stats.push_back(std::move(stat));
  }
}

void CTraceParser::ScanWait(std::string_view line) {
  WaitRecord wait;
  const LineScan* ahead = ScannedAhead(line, LineKind::kWait);
  if (ahead != nullptr) wait = ahead->fields.wait;
  if (ahead != nullptr ? ahead->newer_form : ScanWaitOwnTime(line, &wait)) {
    NoteNewerForm();  // 10.2 and later: named parameters and the wait's own tim
  } else {
    // Earlier waits carry no time of their own: each one moves the trace time on by its ela.
    wait.tim = WrappingAdd(current_time_, wait.ela);
  }
  current_time_ = wait.tim;
  if (TraceStatement* statement = StatementForCursor(wait.cursor)) FileWait(*statement, wait);
}

void CTraceParser::FileWait(TraceStatement& statement, WaitRecord& wait) {
  wait.nam = wait_names_.Intern(wait.nam);
  if (!summary_only_) {
    statement.waits.push_back(wait);
    return;
  }
  ++statement.wait_count;
  statement.wait_sums[ClassOfInterned(wait.nam)] += static_cast<double>(wait.ela);
}

// Event names are few: each is classified once, by the address of its pooled copy.
WaitClass CTraceParser::ClassOfInterned(std::string_view name) {
  if (name.data() != last_wait_name_) {
    const auto known = wait_classes_.find(name.data());
    last_wait_class_ = known != wait_classes_.end()
                           ? known->second
                           : wait_classes_.emplace(name.data(), WaitClassOf(name)).first->second;
    last_wait_name_ = name.data();
  }
  return last_wait_class_;
}

// BINDS #2:
//  bind 0: dty=2 mxl=22(22) mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=24 offset=0
//    bfp=0a4f1c08 bln=22 avl=02 flg=05
//    value=59
// EXEC #2:c=0,e=174,p=0,cr=0,cu=0,mis=0,r=0,dep=1,og=4,tim=1083929217636632
// The block ends at the first line without "bind"; that line is left in the line buffer. A
// block in the 10g+ layout (" Bind#0" ...) is read by ReadNewerBinds.
void CTraceParser::ScanBinds(std::string_view line) {
  CursorNo cursor = 0;
  const LineScan* ahead = ScannedAhead(line, LineKind::kBinds);
  if (ahead != nullptr) {
    cursor = ahead->fields.call.cursor;
  } else {
    ScanBindsLine(line, &cursor);
  }
  TraceStatement* statement = StatementForCursor(cursor);
  std::int32_t bind_set = 0;
  if (statement != nullptr) bind_set = statement->bind_set_count++;
  if (summary_only_ && ahead != nullptr && ahead->block_lines >= 0 &&
      !(ahead->newer_block && skip_waits_)) {
    // Nothing of the block is kept: its lines are stepped over, and the one that ends it read.
    SkipPieces(static_cast<std::size_t>(ahead->block_lines));
    if (ahead->newer_form) NoteNewerForm();
    std::string_view end;
    line_buffer_ = NextLine(&end) ? end : std::string_view();
    hand_back_ = ahead->newer_block;  // as ReadNewerBinds hands back the line that ends it
    return;
  }

  std::string_view in_hand;
  bool have_line = NextLine(&in_hand);
  if (have_line && OpensNewerBindBlock(in_hand)) {
    ReadNewerBinds(statement, cursor, bind_set, in_hand);
    return;
  }
  while (have_line) {
    if (!Contains(in_hand, "bind")) {
      line_buffer_ = in_hand;
      return;
    }
    if (!Contains(in_hand, "dty")) {  //  bind 1: (No oacdef for this bind)
      have_line = NextLine(&in_hand);
      continue;
    }
    BindRecord bind;
    bind.cursor = cursor;
    bind.bind_set = bind_set;
    have_line = ReadBind(&in_hand, &bind);
    if (statement != nullptr && !summary_only_) statement->binds.push_back(std::move(bind));
  }
  line_buffer_ = {};
}

// A summary-only parse keeps no bind record: it only steps over the bind's lines.
bool CTraceParser::ReadBind(std::string_view* line, BindRecord* bind) {
  if (!summary_only_) ScanBindDefinitionLine(*line, bind);
  if (!NextLine(line)) return false;
  if (Contains(*line, "bfp")) {
    if (!summary_only_) ScanBindBufferLine(*line, bind);
    if (!NextLine(line)) return false;
  }
  if (!Contains(*line, "value")) return true;
  if (!summary_only_) ScanBindValueLine(*line, bind);
  return NextLine(line);
}

}  // namespace parser
