#include "report/profiling_parser.h"

#include <type_traits>
#include <utility>

#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"

namespace report {

namespace {

// The cursor number behind `keyword` at the start of the line, read as the scanners read it.
parser::CursorNo CursorOf(std::string_view line, std::string_view keyword) {
  parser::CursorNo cursor = 0;
  parser::FieldScanner(line).Literal(keyword).Cursor(&cursor);
  return cursor;
}

std::string_view WithoutLineEnd(std::string_view line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

bool StartsWith(std::string_view line, std::string_view prefix) {
  return line.substr(0, prefix.size()) == prefix;
}

// "Instance name: orcl" -> "orcl"; "Node name:\tdbhost01" -> "dbhost01".
std::string ValueAfter(std::string_view line, std::size_t at) {
  std::string_view value = parser::From(line, at);
  while (!value.empty() && (value.front() == ' ' || value.front() == '\t')) value.remove_prefix(1);
  while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.remove_suffix(1);
  return std::string(value);
}

void KeepFirst(std::string* fact, std::string value) {
  if (fact->empty()) *fact = std::move(value);
}

// "*** MODULE NAME:(SQL*Plus) 2019-12-22 15:06:13.116" -> "SQL*Plus": the text up to the ')'
// that stands before the timestamp (module names hold parentheses of their own).
std::string Parenthesised(std::string_view line, std::size_t open) {
  const std::size_t close = line.rfind(") ");
  if (close == std::string_view::npos || close <= open) return ValueAfter(line, open + 1);
  return std::string(line.substr(open + 1, close - open - 1));
}

}  // namespace

void ProfilingParser::DispatchLine(std::string_view line) {
  NoteLine(line);
  CTraceParser::DispatchLine(line);
}

void ProfilingParser::NoteLine(std::string_view raw) {
  const std::string_view line = WithoutLineEnd(raw);
  const bool first = std::exchange(first_line_, false);
  if (line.empty()) return;
  switch (line.front()) {
    case '*':
      NoteStarLine(line);
      break;
    case 'O':
      if (StartsWith(line, "Oracle process number:")) {
        builder_.SectionLine();
        ++header_.sections;
        KeepFirst(&header_.process, ValueAfter(line, 22));
      } else if (line.find(" Release ") != std::string_view::npos) {
        KeepFirst(&header_.release, std::string(line));
      }
      break;
    case 'I':
      if (StartsWith(line, "Instance name:")) KeepFirst(&header_.instance, ValueAfter(line, 14));
      break;
    case 'N':
      if (StartsWith(line, "Node name:")) KeepFirst(&header_.node, ValueAfter(line, 10));
      break;
    case 'U':
      if (StartsWith(line, "Unix process pid:"))
        KeepFirst(&header_.os_process, ValueAfter(line, 17));
      break;
    case 'W':
      if (StartsWith(line, "Windows thread id:")) {
        KeepFirst(&header_.os_process, ValueAfter(line, 18));
      }
      break;
    case 'V':
      if (StartsWith(line, "Version ")) KeepFirst(&header_.version, std::string(line));
      break;
    case 'T':
      if (StartsWith(line, "Trace file ")) KeepFirst(&header_.file, ValueAfter(line, 11));
      break;
    case 'D':
      if (StartsWith(line, "Dump file ")) KeepFirst(&header_.file, ValueAfter(line, 10));
      break;
    default:
      // 9i and 10g on Unix: the first line is the file's path alone.
      if (first && line.front() == '/') KeepFirst(&header_.file, std::string(line));
      break;
  }
}

// *** SESSION ID:(9.1407) 2004-05-07 11:20:17.631
// *** 2019-07-09T09:57:07.703476-07:00 (EXAMPLESPDB(8))
void ProfilingParser::NoteStarLine(std::string_view line) {
  if (StartsWith(line, "*** SESSION ID:(")) {
    const std::size_t close = line.find(')', 16);
    builder_.SessionLine(close == std::string_view::npos ? line.substr(16)
                                                         : line.substr(16, close - 16));
  } else if (StartsWith(line, "*** SERVICE NAME:(")) {
    KeepFirst(&header_.service, Parenthesised(line, 17));
  } else if (StartsWith(line, "*** MODULE NAME:(")) {
    KeepFirst(&header_.module, Parenthesised(line, 16));
  } else if (StartsWith(line, "*** ACTION NAME:(")) {
    KeepFirst(&header_.action, Parenthesised(line, 16));
  } else if (line.size() > 4 && line[4] >= '0' && line[4] <= '9') {
    KeepFirst(&header_.first_timestamp, std::string(line.substr(4)));
  }
}

// --- Statements and calls ------------------------------------------------------------------

void ProfilingParser::ScanParsingInCursor(std::string_view line) {
  CTraceParser::ScanParsingInCursor(line);
  const parser::TraceStatement* statement =
      StatementForCursor(CursorOf(line, "PARSING IN CURSOR #"));
  if (statement == nullptr) return;
  // 11g names the statement: "... ad='6db40e78' sqlid='0kmzfbupna0up'".
  std::string_view sql_id;
  const std::size_t at = line.find(" sqlid='");
  if (at != std::string_view::npos) {
    sql_id = line.substr(at + 8);
    sql_id = sql_id.substr(0, sql_id.find('\''));
  }
  builder_.StatementOpened(*statement, sql_id);
}

void ProfilingParser::ScanParseError(std::string_view line) {
  CTraceParser::ScanParseError(line);
  const parser::TraceStatement* statement = StatementForCursor(CursorOf(line, "PARSE ERROR #"));
  if (statement != nullptr) builder_.StatementOpened(*statement, {});
}

void ProfilingParser::BaseScan(ProfiledCall kind, std::string_view line) {
  switch (kind) {
    case ProfiledCall::kParse:
      CTraceParser::ScanParse(line);
      break;
    case ProfiledCall::kExec:
      CTraceParser::ScanExec(line);
      break;
    case ProfiledCall::kFetch:
      CTraceParser::ScanFetch(line);
      break;
    case ProfiledCall::kClose:
      CTraceParser::ScanClose(line);
      break;
  }
}

// The record the parser filed is taken as it is; a call on a cursor without a statement (the
// trace started after its PARSING IN CURSOR line) is scanned here, since it still took time.
template <typename Record>
void ProfilingParser::ObserveCall(ProfiledCall kind, std::string_view line,
                                  std::string_view keyword,
                                  std::vector<Record> parser::TraceStatement::*calls) {
  parser::TraceStatement* statement = StatementForCursor(CursorOf(line, keyword));
  const std::size_t before = statement == nullptr ? 0 : (statement->*calls).size();
  BaseScan(kind, line);
  if (statement != nullptr && (statement->*calls).size() > before) {
    const Record& call = (statement->*calls).back();
    std::int32_t bind_set = -1;
    if constexpr (std::is_same_v<Record, parser::ExecCallRecord>) bind_set = call.exebnd;
    builder_.Call(kind, statement, call, bind_set);
    return;
  }
  parser::CallRecord call;
  parser::ScanCallLine(line, keyword, &call);
  builder_.Call(kind, nullptr, call, -1);
}

void ProfilingParser::ScanParse(std::string_view line) {
  ObserveCall(ProfiledCall::kParse, line, parser::kParseKeyword,
              &parser::TraceStatement::parse_calls);
}

void ProfilingParser::ScanExec(std::string_view line) {
  ObserveCall(ProfiledCall::kExec, line, parser::kExecKeyword, &parser::TraceStatement::exec_calls);
}

void ProfilingParser::ScanFetch(std::string_view line) {
  ObserveCall(ProfiledCall::kFetch, line, parser::kFetchKeyword,
              &parser::TraceStatement::fetch_calls);
}

// CLOSE #140641987987624:c=3,e=3,dep=0,type=1,tim=5793511831927
void ProfilingParser::ScanClose(std::string_view line) {
  CTraceParser::ScanClose(line);
  parser::CallRecord close;
  parser::ScanCloseLine(line, &close);
  builder_.Call(ProfiledCall::kClose, nullptr, close, -1);
}

void ProfilingParser::ScanXctend(std::string_view line) {
  CTraceParser::ScanXctend(line);
  std::int64_t tim = 0;
  if (parser::ScanXctendTime(line, &tim)) builder_.Clock(tim);
}

void ProfilingParser::ScanWait(std::string_view line) {
  parser::TraceStatement* statement = StatementForCursor(CursorOf(line, "WAIT #"));
  const std::size_t before = statement == nullptr ? 0 : statement->waits.size();
  CTraceParser::ScanWait(line);
  if (statement != nullptr && statement->waits.size() > before) {
    const parser::WaitRecord& wait = statement->waits.back();
    // 10.2 on: "... obj#=5 tim=1083929217631030" ends the line (searched from its end).
    builder_.Wait(statement, wait, line.rfind(" tim=") != std::string_view::npos);
    return;
  }
  // As the parser reads it: the older form when the p1 p2 p3 scan reaches the line's end.
  parser::WaitRecord wait;
  std::size_t ela = 0;
  const std::size_t scanned = parser::ScanWaitFields(line, &wait, &ela);
  const bool older_form =
      scanned != std::string_view::npos && parser::IsBlank(parser::From(line, scanned));
  const bool own_time = !older_form && ela != std::string_view::npos &&
                        parser::ScanNamedWaitFields(line.substr(ela), &wait);
  builder_.Wait(nullptr, wait, own_time);
}

Profile ProfilingParser::TakeProfile() {
  if (header_.file.empty()) header_.file = TraceFileName();
  return builder_.Finish(*this, std::move(header_));
}

}  // namespace report
