#include "trace_generator.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <vector>

#include "sql_catalog.h"
#include "trace_text.h"

namespace tracegen {

namespace {

// splitmix64: small, fast and the same on every platform and library.
class Random {
 public:
  explicit Random(std::uint64_t state) : state_(state) {}
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }
  std::int64_t Below(std::int64_t n) {
    return static_cast<std::int64_t>(Next() % static_cast<std::uint64_t>(n));
  }
  bool Percent(int p) { return Below(100) < p; }

 private:
  std::uint64_t state_;
};

struct CursorState {
  const SqlEntry* sql = nullptr;  // null: closed
  bool executed = false;
  int dep = 0;
  std::string text;  // the SQL text as written
};

// What a 19c WAIT line names its three parameters, per event.
struct EventParameters {
  std::string_view first, second, third;
};

class Session {
 public:
  Session(std::ostream& out, const GeneratorOptions& options)
      : text_(out, options.crlf),
        random_(options.random_state),
        options_(options),
        newer_(options.format == TraceFormat::kOracle19c),
        cursors_(static_cast<std::size_t>(options.cursor_slots + 4)) {}

  GeneratedCounts Run();

 private:
  void Header();
  void Header19c();
  void Step();
  void OpenStatement(int cursor, const SqlEntry& sql, int dep);
  void Execute(int cursor, int dep);
  void CloseCursor(int cursor);
  void Recursive();
  void NewSection();
  void Call(std::string_view keyword, int cursor, int dep, std::int64_t rows, bool counted = true);
  void Wait(int cursor, std::string_view name, std::int64_t ela, std::int64_t p1, bool counted);
  void Binds(int cursor, int count);
  void Binds19c(int cursor, int count);
  void Stat(int cursor, std::size_t id, std::string_view operation);
  void Hex(std::uint64_t value, int digits);
  // The ground truth of what is written (see generated_truth.h).
  void TruthOfCall(std::string_view keyword, int cursor, int dep, std::int64_t c, std::int64_t e,
                   std::int64_t rows);
  void TruthOfWait(int cursor, std::string_view name, std::int64_t ela, bool seen);
  void Stretch(std::int64_t begin, std::int64_t end);
  void EndStretch();
  // The cursor's number in the trace: the slot in 9i, an address in 19c ("#140641987987624").
  std::int64_t Number(int cursor) const {
    return newer_ && cursor != 0 ? 140641987987000 + std::int64_t{cursor} * 4712 : cursor;
  }
  void Timestamp(std::string_view older, std::string_view newer) { Line(newer_ ? newer : older); }
  void Line(std::string_view line) {
    text_ << line;
    text_.EndLine();
  }
  CursorState& At(int cursor) { return cursors_[static_cast<std::size_t>(cursor)]; }

  TraceText text_;
  Random random_;
  GeneratorOptions options_;
  bool newer_;
  GeneratedCounts counts_;
  std::vector<CursorState> cursors_;  // index: cursor number
  std::int64_t tim_ = 1083929217630818;
  std::int64_t process_number_ = 12;
  std::int64_t statements_in_section_ = 0;
  // The trace clock as a reader keeps it: lost lines do not move it.
  std::int64_t reader_tim_ = 0;
  bool stretch_open_ = false;
  std::int64_t stretch_begin_ = 0, stretch_end_ = 0;
  // The recursive calls and waits since the last top-level call, which that call claims.
  std::int64_t children_c_ = 0, children_e_ = 0, children_waits_ = 0;
};

GeneratedCounts Session::Run() {
  Header();
  while (text_.bytes() < options_.target_bytes) Step();
  for (int cursor = 1; cursor < static_cast<int>(cursors_.size()); ++cursor) CloseCursor(cursor);
  EndStretch();
  if (options_.size_limit_line) Line("*** DUMP FILE SIZE IS LIMITED TO 10485760 BYTES ***");
  text_.Flush();
  counts_.bytes = text_.bytes();
  counts_.lines = text_.lines();
  return counts_;
}

void Session::Header() {
  if (newer_) {
    Header19c();
    return;
  }
  Line("/u01/app/oracle/admin/orcl/udump/orcl_ora_4242.trc");
  Line("Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production");
  Line("With the Partitioning, OLAP and Oracle Data Mining options");
  Line("JServer Release 9.2.0.4.0 - Production");
  Line("ORACLE_HOME = /u01/app/oracle/product/9.2.0");
  Line("System name:\tLinux");
  Line("Node name:\tdbhost01");
  Line("Release:\t2.4.21-15.ELsmp");
  Line("Version:\t#1 SMP Thu Apr 22 00:18:24 EDT 2004");
  Line("Machine:\ti686");
  Line("Instance name: orcl");
  Line("Redo thread mounted by this instance: 1");
  text_ << "Oracle process number: " << process_number_;
  text_.EndLine();
  Line("Unix process pid: 4242, image: oracle@dbhost01 (TNS V1-V3)");
  Line("");
  Line("*** 2004-05-07 11:20:17.632");
  Line("*** SESSION ID:(9.1407) 2004-05-07 11:20:17.631");
  Line("APPNAME mod='SQL*Plus' mh=3669949024 act='' ah=4029777240");
}

void Session::Header19c() {
  Line("Trace file /u01/app/oracle/diag/rdbms/orcl/orcl/trace/orcl_ora_4242.trc");
  Line("Oracle Database 19c Enterprise Edition Release 19.0.0.0.0 - Production");
  Line("Version 19.14.2.0.0");
  Line("Build label:    RDBMS_19.14.0.0.0DBRUR_LINUX.X64_220707");
  Line("ORACLE_HOME:    /u01/app/oracle/product/19.0.0/dbhome_1");
  Line("System name:    Linux");
  Line("Node name:      dbhost01");
  Line("Release:        5.4.17-2136.309.5.el8uek.x86_64");
  Line("Version:        #2 SMP Sat Jul 16 13:06:22 PDT 2022");
  Line("Machine:        x86_64");
  Line("Instance name: orcl");
  Line("Redo thread mounted by this instance: 1");
  text_ << "Oracle process number: " << process_number_;
  text_.EndLine();
  Line("Unix process pid: 4242, image: oracle@dbhost01");
  Line("");
  Line("");
  Line("*** 2023-05-19T05:28:00.339263+02:00 (ORCLPDB(3))");
  Line("*** SESSION ID:(2773.37935) 2023-05-19T05:28:00.339309+02:00");
  Line("*** CLIENT ID:() 2023-05-19T05:28:00.339315+02:00");
  Line("*** SERVICE NAME:(orclpdb) 2023-05-19T05:28:00.339319+02:00");
  Line("*** MODULE NAME:(JDBC Thin Client) 2023-05-19T05:28:00.339325+02:00");
  Line("*** ACTION NAME:() 2023-05-19T05:28:00.339329+02:00");
  Line("*** CLIENT DRIVER:(jdbcthin : 19.3.0.0.0) 2023-05-19T05:28:00.339332+02:00");
  Line("*** CONTAINER ID:(3) 2023-05-19T05:28:00.339336+02:00");
  Line(" ");
}

void Session::Step() {
  const int cursor = 1 + static_cast<int>(random_.Below(options_.cursor_slots));
  if (At(cursor).sql == nullptr || random_.Percent(options_.reopen_percent)) {
    CloseCursor(cursor);
    if (random_.Percent(options_.recursive_percent)) Recursive();
    const auto pick = static_cast<std::size_t>(random_.Below(kApplicationSql.size()));
    OpenStatement(cursor, kApplicationSql[pick], 0);
  }
  for (std::int64_t n = 1 + random_.Below(3); n > 0; --n) Execute(cursor, 0);
  if (random_.Percent(15)) {
    if (newer_) {
      text_ << "XCTEND rlbk=0, rd_only=0, tim=" << tim_;
      text_.EndLine();
      reader_tim_ = tim_;
    } else {
      Line("XCTEND rlbk=0, rd_only=0");
    }
  }
  if (random_.Percent(4)) {
    Timestamp("*** 2004-05-07 11:20:19.112", "*** 2023-05-19T05:28:02.112000+02:00");
  }
  if (options_.waits && random_.Percent(10)) {
    Wait(0, "SQL*Net message from client", 1000 + random_.Below(90000), 1650815232, false);
  }
  if (options_.process_line_every > 0 && statements_in_section_ >= options_.process_line_every) {
    NewSection();
  }
}

void Session::OpenStatement(int cursor, const SqlEntry& sql, int dep) {
  std::string sql_text(sql.text);
  if (dep == 0 && random_.Percent(options_.long_sql_percent)) {
    sql_text += "\n   and 1 in (0";  // one line longer than the 1023-byte line buffer
    for (int i = 1; i < 300; ++i) sql_text += ", " + std::to_string(i);
    sql_text += ")";
  }
  const std::int64_t uid = dep == 0 ? 57 : 0;
  Line("=====================");
  text_ << "PARSING IN CURSOR #" << Number(cursor)
        << " len=" << static_cast<std::int64_t>(sql_text.size()) << " dep=" << std::int64_t{dep}
        << " uid=" << uid << " oct=" << std::int64_t{sql.oct} << " lid=" << uid << " tim=" << tim_
        << " hv=" << static_cast<std::int64_t>(random_.Below(4294967295)) << " ad='";
  Hex(random_.Next(), newer_ ? 9 : 8);
  text_ << "'";
  if (newer_) {
    text_ << " sqlid='";
    for (int i = 0; i < 13; ++i) {
      text_ << std::string_view(&"0123456789abcdfghjkmnpqrstuvwxyz"[random_.Below(32)], 1);
    }
    text_ << "'";
  }
  text_.EndLine();
  std::string_view rest(sql_text);
  for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
    Line(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  Line(rest);
  Line("END OF STMT");
  ++counts_.statements;
  ++statements_in_section_;
  At(cursor) = CursorState{&sql, false, dep, sql_text};
  Call("PARSE #", cursor, dep, 0);
}

void Session::Execute(int cursor, int dep) {
  const SqlEntry& sql = *At(cursor).sql;
  const bool binds = options_.binds && sql.binds > 0;
  if (binds) {
    if (newer_) {
      Binds19c(cursor, sql.binds);
    } else {
      Binds(cursor, sql.binds);
    }
  }
  if (options_.waits && random_.Percent(30)) {
    // In 9i the first line after a BINDS block ends the block and is lost unless it is an EXEC
    // line; nothing is lost behind a 19c block.
    bool right_after_binds = binds && !newer_;
    for (std::int64_t n = 1 + random_.Below(3); n > 0; --n) {
      Wait(cursor, "db file sequential read", 100 + random_.Below(20000), 4 + random_.Below(8),
           !right_after_binds);
      right_after_binds = false;
    }
  }
  Call("EXEC #", cursor, dep, sql.oct == 3 ? 0 : 1);
  const std::int64_t fetches = sql.oct == 3 ? 1 + random_.Below(4) : 0;
  for (std::int64_t n = 0; n < fetches; ++n) {
    if (options_.waits)
      Wait(cursor, "SQL*Net message to client", 2 + random_.Below(6), 1650815232, true);
    Call("FETCH #", cursor, dep, 1 + random_.Below(15));
    if (options_.waits && dep == 0) {
      Wait(cursor, "SQL*Net message from client", 500 + random_.Below(400000), 1650815232, true);
    }
  }
  At(cursor).executed = true;
}

void Session::CloseCursor(int cursor) {
  CursorState& state = At(cursor);
  if (state.sql != nullptr && state.executed && options_.stats) {
    // 9i writes the plan rows when the cursor closes (19c after the first execution by default;
    // here at the close too).
    for (std::size_t id = 0; id < state.sql->plan.size() && !state.sql->plan[id].empty(); ++id) {
      Stat(cursor, id, state.sql->plan[id]);
    }
  }
  if (newer_ && state.sql != nullptr) {
    tim_ += 3;
    text_ << "CLOSE #" << Number(cursor) << ":c=0,e=3,dep=" << std::int64_t{state.dep}
          << ",type=" << random_.Below(4) << ",tim=" << tim_;
    text_.EndLine();
    TruthOfCall("CLOSE #", cursor, state.dep, 0, 3, 0);
  }
  state = CursorState{};
}

// STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=290 us)'
// STAT #1407.. id=1 cnt=14 pid=0 pos=1 obj=894 op='INDEX RANGE SCAN X (cr=5 pr=1 pw=0 str=1
//   time=439 us cost=4 size=246 card=6)'
void Session::Stat(int cursor, std::size_t id, std::string_view operation) {
  const std::int64_t rows = random_.Below(200);
  text_ << "STAT #" << Number(cursor) << " id=" << static_cast<std::int64_t>(id + 1)
        << " cnt=" << rows << " pid=" << static_cast<std::int64_t>(id)
        << " pos=1 obj=" << (id == 0 ? 0 : 30 + random_.Below(60000)) << " op='" << operation
        << " (cr=" << random_.Below(900);
  if (newer_) {
    text_ << " pr=" << random_.Below(40) << " pw=0 str=1 time=" << random_.Below(90000)
          << " us cost=" << random_.Below(50) << " size=" << random_.Below(9000) << " card=" << rows
          << ")'";
  } else {
    text_ << " r=" << random_.Below(40) << " w=0 time=" << random_.Below(90000) << " us)'";
  }
  text_.EndLine();
  ++counts_.stats;
}

void Session::Recursive() {
  const int cursor = options_.cursor_slots + 1 + static_cast<int>(random_.Below(3));
  const auto pick = static_cast<std::size_t>(random_.Below(kRecursiveSql.size()));
  OpenStatement(cursor, kRecursiveSql[pick], 1);
  Execute(cursor, 1);
  CloseCursor(cursor);
}

void Session::NewSection() {
  for (int cursor = 1; cursor < static_cast<int>(cursors_.size()); ++cursor) CloseCursor(cursor);
  EndStretch();
  Line("");
  ++process_number_;
  Header();
  statements_in_section_ = 0;
}

// EXEC #1:c=0,e=312,p=0,cr=0,cu=0,mis=1,r=0,dep=0,og=4,tim=1083929217630818
void Session::Call(std::string_view keyword, int cursor, int dep, std::int64_t rows, bool counted) {
  const std::int64_t elapsed = 20 + random_.Below(3000);
  tim_ += elapsed;
  const std::int64_t cpu = random_.Below(3) * (newer_ ? 1000 : 10000);
  const std::int64_t disk = random_.Below(4);
  const std::int64_t query = random_.Below(40);
  const std::int64_t current = random_.Below(6);
  const std::int64_t misses = keyword == "PARSE #" ? random_.Below(2) : 0;
  text_ << keyword << Number(cursor) << ":c=" << cpu << ",e=" << elapsed << ",p=" << disk
        << ",cr=" << query << ",cu=" << current << ",mis=" << misses << ",r=" << rows
        << ",dep=" << std::int64_t{dep};
  if (newer_) {
    text_ << ",og=1,plh=" << 1000000 + std::int64_t{At(cursor).sql->oct} * 7919 << ",tim=" << tim_;
  } else {
    text_ << ",og=4,tim=" << tim_;
  }
  text_.EndLine();
  TruthOfCall(keyword, cursor, dep, cpu, elapsed, rows);
  if (!counted) return;
  if (keyword == "PARSE #") ++counts_.parse_calls;
  if (keyword == "EXEC #") ++counts_.exec_calls;
  if (keyword == "FETCH #") ++counts_.fetch_calls;
}

// WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1
// WAIT #1406..: nam='db file sequential read' ela= 343 file#=4 block#=1234 blocks=1 obj#=89 tim=..
void Session::Wait(int cursor, std::string_view name, std::int64_t ela, std::int64_t p1,
                   bool counted) {
  tim_ += ela;
  text_ << "WAIT #" << Number(cursor) << ": nam='" << name << "' ela= " << ela;
  if (newer_) {
    const bool read = name == "db file sequential read";
    const EventParameters names = read ? EventParameters{"file#", "block#", "blocks"}
                                       : EventParameters{"driver id", "#bytes", "p3"};
    text_ << " " << names.first << "=" << (read ? p1 : 675562835) << " " << names.second << "="
          << (read ? random_.Below(300000) : 1) << " " << names.third << "=" << (read ? 1 : 0)
          << " obj#=" << 30 + random_.Below(60000) << " tim=" << tim_;
  } else {
    text_ << " p1=" << p1 << " p2=" << random_.Below(300000) << " p3=" << random_.Below(2);
  }
  text_.EndLine();
  if (counted) ++counts_.waits;
  // WAIT #0 lines are seen though no statement files them; a 9i wait behind BINDS is lost.
  TruthOfWait(cursor, name, ela, cursor == 0 || counted);
}

void Session::Stretch(std::int64_t begin, std::int64_t end) {
  if (!stretch_open_) {
    stretch_open_ = true;
    stretch_begin_ = begin;
    stretch_end_ = end;
    return;
  }
  stretch_begin_ = std::min(stretch_begin_, begin);
  stretch_end_ = std::max(stretch_end_, end);
}

void Session::EndStretch() {
  if (!stretch_open_) return;
  counts_.truth.response_time += stretch_end_ - stretch_begin_;
  stretch_open_ = false;
}

void Session::TruthOfCall(std::string_view keyword, int cursor, int dep, std::int64_t c,
                          std::int64_t e, std::int64_t rows) {
  GeneratedTruth& truth = counts_.truth;
  reader_tim_ = tim_;
  std::int64_t own_c = c, own_e = e;
  std::int64_t claimed_waits = 0;
  if (dep == 0) {
    truth.cpu += c;
    if (keyword != "CLOSE #") ++truth.calls;
    Stretch(tim_ - e, tim_);
    own_c -= children_c_;
    own_e -= children_e_;
    claimed_waits = children_waits_;
    children_c_ = children_e_ = children_waits_ = 0;
  } else {
    children_c_ += c;
    children_e_ += e;
  }
  if (keyword == "CLOSE #") return;
  StatementTruth& statement = truth.statements[At(cursor).text];
  statement.depth = dep;
  const std::size_t kind = keyword == "PARSE #" ? 0 : keyword == "EXEC #" ? 1 : 2;
  ++statement.calls[kind].count;
  statement.calls[kind].own_cpu += own_c;
  statement.calls[kind].own_elapsed += own_e;
  statement.cpu += c;
  statement.elapsed += e;
  if (kind > 0) statement.rows += rows;
  statement.inclusive_wait_time += claimed_waits;
}

void Session::TruthOfWait(int cursor, std::string_view name, std::int64_t ela, bool seen) {
  if (!seen) return;
  std::int64_t end = tim_;
  if (!newer_) {
    reader_tim_ += ela;
    end = reader_tim_;
  }
  GeneratedTruth& truth = counts_.truth;
  truth.events[std::string(name)].Add(ela);
  Stretch(end - ela, end);
  if (cursor == 0) return;
  StatementTruth& statement = truth.statements[At(cursor).text];
  statement.waits[std::string(name)].Add(ela);
  statement.inclusive_wait_time += ela;
  if (At(cursor).dep > 0) children_waits_ += ela;
}

void Session::Binds(int cursor, int count) {
  text_ << "BINDS #" << Number(cursor) << ":";
  text_.EndLine();
  for (int bind = 0; bind < count; ++bind) {
    const bool number = random_.Percent(60);
    const bool null_value = random_.Percent(5);
    text_ << " bind " << std::int64_t{bind}
          << (number ? ": dty=2 mxl=22(22)" : ": dty=1 mxl=32(09)")
          << " mal=00 scl=00 pre=00 oacflg=08 oacfl2=1 size=" << (number ? "24" : "32")
          << " offset=0";
    text_.EndLine();
    text_ << "   bfp=";
    Hex(random_.Next(), 8);
    text_ << (number ? " bln=22" : " bln=32") << (null_value ? " avl=00" : " avl=02") << " flg=05";
    text_.EndLine();
    if (!null_value) {
      if (number) {
        text_ << "   value=" << random_.Below(100000);
      } else {
        text_ << "   value=\"CUST" << random_.Below(99999) << "\"";
      }
      text_.EndLine();
    }
  }
  counts_.binds += static_cast<std::uint64_t>(count);
  ++counts_.bind_sets;
}

// BINDS #140641987987624:
//
//  Bind#0
//   oacdty=02 mxl=22(22) mxlc=00 mal=00 scl=00 pre=00
//   oacflg=03 fl2=1000000 frm=01 csi=873 siz=24 off=0
//   kxsbbbfp=7fe9c3cf3450  bln=22  avl=06  flg=05
//   value=111242892
void Session::Binds19c(int cursor, int count) {
  text_ << "BINDS #" << Number(cursor) << ":";
  text_.EndLine();
  Line("");
  for (int bind = 0; bind < count; ++bind) {
    const bool number = random_.Percent(60);
    const bool null_value = random_.Percent(5);
    text_ << " Bind#" << std::int64_t{bind};
    text_.EndLine();
    text_ << (number ? "  oacdty=02 mxl=22(22)" : "  oacdty=01 mxl=32(09)")
          << " mxlc=00 mal=00 scl=00 pre=00";
    text_.EndLine();
    text_ << "  oacflg=03 fl2=1000000 frm=01 csi=873 siz=" << (number ? "24" : "32") << " off=0";
    text_.EndLine();
    text_ << "  kxsbbbfp=";
    Hex(random_.Next(), 12);
    text_ << (number ? "  bln=22" : "  bln=32") << (null_value ? "  avl=00" : "  avl=02")
          << "  flg=05";
    text_.EndLine();
    if (!null_value) {
      if (number) {
        text_ << "  value=" << random_.Below(100000);
      } else {
        text_ << "  value=\"CUST" << random_.Below(99999) << "\"";
      }
      text_.EndLine();
    }
  }
  counts_.binds += static_cast<std::uint64_t>(count);
  ++counts_.bind_sets;
}

void Session::Hex(std::uint64_t value, int digits) {
  char hex[16];  // at most 16 digits
  for (int i = digits - 1; i >= 0; --i) {
    hex[i] = "0123456789abcdef"[value & 15];
    value >>= 4;
  }
  text_ << std::string_view(hex, static_cast<std::size_t>(digits));
}

}  // namespace

GeneratedCounts WriteTrace(std::ostream& out, const GeneratorOptions& options) {
  return Session(out, options).Run();
}

bool WriteTraceFile(const std::string& path, const GeneratorOptions& options,
                    GeneratedCounts* counts) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  const GeneratedCounts written = WriteTrace(out, options);
  out.close();
  if (counts != nullptr) *counts = written;
  return !out.fail();
}

}  // namespace tracegen
