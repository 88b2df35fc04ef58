// A stand-in for the Oracle client library, for tests only (Linux): it exports the OCI entry
// points that Pelicor's Oracle access layer calls and behaves like a small server.
//
// Each test writes a scenario file and names it in PELICOR_FAKE_OCI_SCENARIO; the file is read
// again at every logon and execution, one "key=value" per line:
//   tns_banner, os_version, plsql_banner, instance, host_name, user_dump_dest
//                       the answers of the dictionary queries (a missing key: no row)
//   spid=SID,SERIAL#,SPID   one per session the server knows
//   tracefile=SID,SERIAL#,PATH   V$PROCESS.TRACEFILE of a session
//   trace_folder        the real folder behind user_dump_dest, read by the package and shown
//                       in V$DIAG_TRACE_FILE_CONTENTS
//   package=missing     every call of vandel_trace_file_io fails as a missing package does
//   user, password, connect   the one account OCILogon accepts
//   fail=FUNCTION|CODE|TEXT   that entry point fails with this Oracle error
//   fail_sql=PART|CODE|TEXT   executing a text that holds PART fails so
//   transcript=PATH     every call worth checking is appended there, one line each
//
// It checks what it is sent: SQL texts are matched exactly (anything else fails as ORA-00942),
// the package's blocks need exactly their binds (names, types, sizes: else ORA-01008), and
// every handle must be live and of its type (else OCI_INVALID_HANDLE). fake_oci_live_handles()
// counts the handles not yet freed.
//
// Built twice: the second build (FAKE_OCI_WITHOUT_BIND) lacks OCIBindByName.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "db/oci_api.h"

using namespace db::oci;

namespace {

struct Handle {
  explicit Handle(ub4 handle_type) : type(handle_type) {}
  virtual ~Handle() = default;
  ub4 type;
};

struct Env : Handle {
  Env() : Handle(OCI_HTYPE_ENV) {}
};

struct Err : Handle {
  Err() : Handle(OCI_HTYPE_ERROR) {}
  sb4 code = 0;
  std::string text;
};

// The package's open file lives with the session, as a PL/SQL package's state does.
struct Svc : Handle {
  explicit Svc(Env* owner) : Handle(OCI_HTYPE_SVCCTX), env(owner) {}
  Env* env;
  std::vector<std::string> lines;
  std::size_t next_line = 0;
  bool file_open = false;
};

struct BindSlot {
  void* value = nullptr;
  sb4 size = 0;
  ub2 type = 0;
};

struct Stmt : Handle {
  Stmt() : Handle(OCI_HTYPE_STMT) {}
  std::string text;
  std::map<std::string, BindSlot> binds;
  BindSlot define;
  sb2* define_indicator = nullptr;
  bool has_define = false;
  std::vector<std::string> rows;  // of an executed query, the first already handed out
  std::size_t next_row = 0;
};

// Bind and define handles: owned by their statement, as in OCI.
struct Child {};

struct State {
  std::mutex mutex;
  std::set<Handle*> live;
  Child child;
};

State& Global() {
  static State state;
  return state;
}

using Scenario = std::multimap<std::string, std::string>;

Scenario ReadScenario() {
  Scenario scenario;
  const char* path = std::getenv("PELICOR_FAKE_OCI_SCENARIO");
  if (path == nullptr) return scenario;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    scenario.emplace(line.substr(0, equals), line.substr(equals + 1));
  }
  return scenario;
}

const std::string* Find(const Scenario& scenario, const std::string& key) {
  const auto found = scenario.find(key);
  return found == scenario.end() ? nullptr : &found->second;
}

void Note(const Scenario& scenario, const std::string& line) {
  if (const std::string* path = Find(scenario, "transcript")) {
    std::ofstream(*path, std::ios::app) << line << "\n";
  }
}

template <typename T>
T* Live(const void* handle, ub4 type) {
  State& state = Global();
  auto* base = static_cast<Handle*>(const_cast<void*>(handle));
  if (state.live.count(base) == 0 || base->type != type) return nullptr;
  return static_cast<T*>(base);
}

template <typename T>
T* Track(T* handle) {
  Global().live.insert(handle);
  return handle;
}

sword Fail(Err* err, sb4 code, const std::string& text) {
  if (err != nullptr) {
    err->code = code;
    err->text = text;
  }
  return OCI_ERROR;
}

// The first `key` line (fail=, fail_sql=) "PART|CODE|TEXT" whose PART `applies`: fails the call.
template <typename Applies>
bool FailedByRule(const Scenario& scenario, const char* key, Applies applies, Err* err,
                  sword* status) {
  for (auto [it, end] = scenario.equal_range(key); it != end; ++it) {
    const std::string& rule = it->second;
    const std::size_t bar = rule.find('|');
    const std::size_t second = rule.find('|', bar + 1);
    if (bar == std::string::npos || second == std::string::npos) continue;
    if (!applies(rule.substr(0, bar))) continue;
    *status = Fail(err, std::atoi(rule.substr(bar + 1, second - bar - 1).c_str()),
                   rule.substr(second + 1));
    return true;
  }
  return false;
}

// A fail=FUNCTION|CODE|TEXT line for `function`: fails the call.
bool Injected(const Scenario& scenario, const char* function, Err* err, sword* status) {
  return FailedByRule(
      scenario, "fail", [function](const std::string& part) { return part == function; }, err,
      status);
}

bool StartsWith(const std::string& text, const char* head) {
  return text.compare(0, std::strlen(head), head) == 0;
}

// --- The server's answers ---------------------------------------------------------------------

const char* const kDumpSql =
    "select /* zantiv */ NVL(value,'NONE') from sys.v_$parameter where name='user_dump_dest'";
const char* const kOsTypeSql =
    "select /* zantiv */ upper(banner) from sys.v_$version where upper(banner) like 'TNS%'";
const char* const kOsVersionSql =
    "select version  from sys.product_component_version where product like 'Oracle%'";
const char* const kPlsqlSql =
    "select /* zantiv */ banner from sys.v_$version where upper(banner) like '%PL/SQL%%.%'";
const char* const kInstanceSql = "select /* zantiv */ NVL(LOWER(name),'NONE') from sys.v_$database";
const char* const kHostSql = "select host_name from v$instance";
const char* const kTraceFileSql =
    "select /* zantiv */ p.tracefile from v$process p, v$session s where p.addr=s.paddr and "
    "s.sid = ";
const char* const kContentsSql =
    "select /* zantiv */ payload from v$diag_trace_file_contents where trace_filename = :name "
    "order by line_number";
const char* const kSpidSql =
    "select /* zantiv */ p.spid from sys.v_$process p, sys.v_$session s where p.addr=s.paddr and "
    "s.SID = ";

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The answer to a dictionary query: true with *found false when it has no row.
bool Answer(const Scenario& scenario, const std::string& sql, std::string* value, bool* found) {
  const std::map<std::string, std::string> keyed = {
      {kDumpSql, "user_dump_dest"}, {kOsTypeSql, "tns_banner"}, {kOsVersionSql, "os_version"},
      {kPlsqlSql, "plsql_banner"},  {kInstanceSql, "instance"}, {kHostSql, "host_name"}};
  const bool spid_query = StartsWith(sql, kSpidSql);
  std::string answer;
  *found = false;
  if (const auto key = keyed.find(sql); key != keyed.end()) {
    const std::string* row = Find(scenario, key->second);
    *found = row != nullptr;
    if (row) answer = sql == kOsTypeSql ? Upper(*row) : *row;
  } else if (spid_query || StartsWith(sql, kTraceFileSql)) {
    // spid= and tracefile= lines: SID,SERIAL#,ANSWER.
    for (auto [it, end] = scenario.equal_range(spid_query ? "spid" : "tracefile"); it != end;
         ++it) {
      std::istringstream fields(it->second);
      std::string sid, serial;
      std::getline(fields, sid, ',');
      std::getline(fields, serial, ',');
      std::getline(fields, answer, ',');
      *found = sql == (spid_query ? kSpidSql + sid + " and s.SERIAL# = "
                                  : kTraceFileSql + sid + " and s.serial# = ") +
                          serial;
      if (*found) break;
    }
  } else {
    return false;
  }
  if (*found) *value = answer;
  return true;
}

// --- The package ------------------------------------------------------------------------------

const char* const kValidate = "BEGIN BEGIN :result := vandel_trace_file_io.validate_file( ";
const char* const kOpen = "BEGIN BEGIN :result := vandel_trace_file_io.open_file( ";
const char* const kRead =
    "BEGIN BEGIN :result := vandel_trace_file_io.read_line(:buf, :len); END; END;";
const char* const kBlockEnd = "); END; END;";

// The quoted arguments "'a', 'b'" of a call, or false when the text is not of that form.
bool Arguments(const std::string& text, std::size_t start, std::vector<std::string>* args) {
  const std::size_t end = text.size() - std::strlen(kBlockEnd);
  if (text.size() < start + std::strlen(kBlockEnd) ||
      text.compare(end, std::string::npos, kBlockEnd) != 0)
    return false;
  std::size_t at = start;
  while (at < end) {
    if (text[at] != '\'') return false;
    const std::size_t close = text.find('\'', at + 1);
    if (close == std::string::npos || close > end) return false;
    args->push_back(text.substr(at + 1, close - at - 1));
    at = close + 1;
    if (at < end && text.compare(at, 2, ", ") != 0) return false;
    if (at < end) at += 2;
  }
  return true;
}

bool Bound(const Stmt& stmt, const std::string& name, ub2 type, sb4 size) {
  const auto found = stmt.binds.find(name);
  return found != stmt.binds.end() && found->second.type == type && found->second.size == size &&
         found->second.value != nullptr;
}

int* IntBind(Stmt& stmt, const std::string& name) {
  return static_cast<int*>(stmt.binds[name].value);
}

std::string FolderFile(const Scenario& scenario, const std::string& dir, const std::string& name,
                       bool* ok) {
  const std::string* udd = Find(scenario, "user_dump_dest");
  const std::string* folder = Find(scenario, "trace_folder");
  *ok = udd && folder && dir == *udd && !name.empty() && name.find('/') == std::string::npos &&
        name.find('*') == std::string::npos;
  return *ok ? *folder + "/" + name : "";
}

sword RunPackage(const Scenario& scenario, Svc& svc, Stmt& stmt, Err* err) {
  const std::string& text = stmt.text;
  if (const std::string* package = Find(scenario, "package"); package && *package == "missing") {
    return Fail(err, 6550,
                "ORA-06550: line 1, column 23:\nPLS-00201: identifier 'VANDEL_TRACE_FILE_IO' "
                "must be declared\nORA-06550: line 1, column 13:\nPL/SQL: Statement ignored\n");
  }
  std::vector<std::string> args;
  if (text == kRead) {
    if (!Bound(stmt, ":result", SQLT_INT, 4) || !Bound(stmt, ":len", SQLT_INT, 4) ||
        !Bound(stmt, ":buf", SQLT_STR, 1024) || stmt.binds.size() != 3)
      return Fail(err, 1008, "ORA-01008: not all variables bound\n");
    if (!svc.file_open || svc.next_line >= svc.lines.size()) {
      *IntBind(stmt, ":result") = 100;
      return OCI_SUCCESS;
    }
    const std::string& line = svc.lines[svc.next_line++];
    const std::size_t length = std::min<std::size_t>(line.size(), 1023);
    auto* buffer = static_cast<char*>(stmt.binds[":buf"].value);
    std::memcpy(buffer, line.data(), length);
    buffer[length] = '\0';
    *IntBind(stmt, ":len") = static_cast<int>(length);
    *IntBind(stmt, ":result") = 0;
    return OCI_SUCCESS;
  }
  const bool validate = StartsWith(text, kValidate);
  const bool open = StartsWith(text, kOpen);
  if (!validate && !open)
    return Fail(err, 6550, "ORA-06550: line 1, column 7:\nunexpected block\n");
  if (!Arguments(text, std::strlen(validate ? kValidate : kOpen), &args) ||
      args.size() != (validate ? 2u : 4u) || (open && args[2] != "R"))
    return Fail(err, 6550, "ORA-06550: line 1, column 7:\nPLS-00306: wrong arguments\n");
  if (!Bound(stmt, ":result", SQLT_INT, 4) || stmt.binds.size() != 1)
    return Fail(err, 1008, "ORA-01008: not all variables bound\n");
  bool ok = false;
  const std::string path = FolderFile(scenario, args[0], args[1], &ok);
  std::ifstream file;
  if (ok) file.open(path, std::ios::binary);
  if (validate) {
    *IntBind(stmt, ":result") = file.is_open() ? 1 : 0;
    return OCI_SUCCESS;
  }
  if (!file.is_open()) {
    *IntBind(stmt, ":result") = 20001;  // invalid path
    return OCI_SUCCESS;
  }
  svc.lines.clear();
  std::string line;
  while (std::getline(file, line)) svc.lines.push_back(line);
  svc.next_line = 0;
  svc.file_open = true;
  const std::string& trace_id = args[3];
  if (!trace_id.empty()) {
    std::size_t holding = 0;
    for (std::size_t i = 0; i < svc.lines.size(); ++i) {
      if (svc.lines[i].find(trace_id) != std::string::npos) {
        ++holding;
        svc.next_line = i + 1;
      }
    }
    if (holding != 1) {
      svc.file_open = false;
      *IntBind(stmt, ":result") = 20014;
      return OCI_SUCCESS;
    }
  }
  *IntBind(stmt, ":result") = 0;
  return OCI_SUCCESS;
}

sword Deliver(Stmt& stmt, const std::string& value);

sword Execute(const Scenario& scenario, Svc& svc, Stmt& stmt, Err* err, ub4 iters) {
  const auto held = [&stmt](const std::string& part) {
    return stmt.text.find(part) != std::string::npos;
  };
  if (sword status; FailedByRule(scenario, "fail_sql", held, err, &status)) return status;
  if (StartsWith(stmt.text, "BEGIN ")) {
    if (iters != 1) return Fail(err, 24333, "ORA-24333: zero iteration count\n");
    return RunPackage(scenario, svc, stmt, err);
  }
  stmt.rows.clear();
  stmt.next_row = 0;
  std::string value;
  bool found = false;
  if (stmt.text == kContentsSql) {
    // The file name goes in as a NUL-terminated text of exactly its length.
    const auto bound = stmt.binds.find(":name");
    if (bound == stmt.binds.end() || bound->second.type != SQLT_STR ||
        bound->second.value == nullptr || stmt.binds.size() != 1 ||
        static_cast<std::size_t>(bound->second.size) !=
            std::strlen(static_cast<const char*>(bound->second.value)) + 1)
      return Fail(err, 1008, "ORA-01008: not all variables bound\n");
    const std::string* folder = Find(scenario, "trace_folder");
    std::ifstream file;
    const std::string name = static_cast<const char*>(bound->second.value);
    if (folder && name.find('/') == std::string::npos) file.open(*folder + "/" + name);
    for (std::string line; std::getline(file, line);) stmt.rows.push_back(line + "\n");
    if (stmt.rows.empty()) return OCI_NO_DATA;
    value = stmt.rows[0];
    stmt.next_row = 1;
    found = true;
  } else if (!Answer(scenario, stmt.text, &value, &found))
    return Fail(err, 942, "ORA-00942: table or view does not exist\n");
  if (iters != 1 || !stmt.has_define || stmt.define.type != SQLT_STR)
    return Fail(err, 1007, "ORA-01007: variable not in select list\n");
  if (!found) return OCI_NO_DATA;
  return Deliver(stmt, value);
}

sword Deliver(Stmt& stmt, const std::string& value) {
  const std::size_t room = static_cast<std::size_t>(stmt.define.size) - 1;
  const std::size_t length = std::min(room, value.size());
  std::memcpy(stmt.define.value, value.data(), length);
  static_cast<char*>(stmt.define.value)[length] = '\0';
  if (stmt.define_indicator) *stmt.define_indicator = 0;
  return OCI_SUCCESS;
}

std::string Text(const OraText* text, ub4 length) {
  return text ? std::string(reinterpret_cast<const char*>(text), length) : std::string();
}

}  // namespace

#define FAKE_OCI_EXPORT extern "C" __attribute__((visibility("default")))

FAKE_OCI_EXPORT int fake_oci_live_handles(void) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  return static_cast<int>(Global().live.size());
}

FAKE_OCI_EXPORT sword OCIEnvCreate(OCIEnv** envhpp, ub4 /*mode*/, void* /*ctxp*/,
                                   void* (* /*malocfp*/)(void*, std::size_t),
                                   void* (* /*ralocfp*/)(void*, void*, std::size_t),
                                   void (* /*mfreefp*/)(void*, void*), std::size_t /*xtramem_sz*/,
                                   void** /*usrmempp*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  sword status = OCI_SUCCESS;
  if (Injected(scenario, "OCIEnvCreate", nullptr, &status)) {
    *envhpp = nullptr;
    return status;
  }
  *envhpp = reinterpret_cast<OCIEnv*>(static_cast<Handle*>(Track(new Env())));
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIHandleAlloc(const void* parenth, void** hndlpp, ub4 type, std::size_t,
                                     void**) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  *hndlpp = nullptr;
  if (Live<Env>(parenth, OCI_HTYPE_ENV) == nullptr) return OCI_INVALID_HANDLE;
  Handle* made = nullptr;
  if (type == OCI_HTYPE_ERROR) made = new Err();
  if (type == OCI_HTYPE_STMT) made = new Stmt();
  if (made == nullptr) return OCI_ERROR;
  *hndlpp = Track(made);
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIHandleFree(void* hndlp, ub4 type) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  auto* handle = static_cast<Handle*>(hndlp);
  if (Global().live.count(handle) == 0 || handle->type != type || type == OCI_HTYPE_SVCCTX)
    return OCI_INVALID_HANDLE;
  Global().live.erase(handle);
  delete handle;
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIAttrGet(const void* trgthndlp, ub4 trghndltyp, void* attributep,
                                 ub4* /*sizep*/, ub4 attrtype, OCIError* errhp) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  Svc* svc = Live<Svc>(trgthndlp, OCI_HTYPE_SVCCTX);
  if (err == nullptr || svc == nullptr || trghndltyp != OCI_HTYPE_SVCCTX) return OCI_INVALID_HANDLE;
  if (sword status; Injected(scenario, "OCIAttrGet", err, &status)) return status;
  if (attrtype != OCI_ATTR_ENV) return Fail(err, 24315, "ORA-24315: illegal attribute type\n");
  Note(scenario, "attrget env");
  *static_cast<OCIEnv**>(attributep) = reinterpret_cast<OCIEnv*>(static_cast<Handle*>(svc->env));
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIAttrSet(void* trgthndlp, ub4 trghndltyp, void* attributep, ub4 /*size*/,
                                 ub4 attrtype, OCIError* errhp) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (err == nullptr || Live<Stmt>(trgthndlp, OCI_HTYPE_STMT) == nullptr ||
      trghndltyp != OCI_HTYPE_STMT)
    return OCI_INVALID_HANDLE;
  if (attrtype != OCI_ATTR_PREFETCH_ROWS)
    return Fail(err, 24315, "ORA-24315: illegal attribute type\n");
  Note(ReadScenario(), "prefetch " + std::to_string(*static_cast<ub4*>(attributep)));
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIErrorGet(void* hndlp, ub4 recordno, OraText* /*sqlstate*/, sb4* errcodep,
                                  OraText* bufp, ub4 bufsiz, ub4 type) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  Err* err = Live<Err>(hndlp, OCI_HTYPE_ERROR);
  if (err == nullptr || type != OCI_HTYPE_ERROR) return OCI_INVALID_HANDLE;
  if (recordno != 1 || err->code == 0) return OCI_NO_DATA;
  *errcodep = err->code;
  const std::size_t length = std::min<std::size_t>(err->text.size(), bufsiz - 1);
  std::memcpy(bufp, err->text.data(), length);
  bufp[length] = '\0';
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCILogon(OCIEnv* envhp, OCIError* errhp, OCISvcCtx** svchp,
                               const OraText* username, ub4 uname_len, const OraText* password,
                               ub4 passwd_len, const OraText* dbname, ub4 dbname_len) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Env* env = Live<Env>(envhp, OCI_HTYPE_ENV);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (env == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (sword status; Injected(scenario, "OCILogon", err, &status)) return status;
  const std::string user = Text(username, uname_len);
  const std::string pass = Text(password, passwd_len);
  const std::string database = Text(dbname, dbname_len);
  Note(scenario, "logon " + user + "/" + pass + "@" + database);
  const std::string* want_user = Find(scenario, "user");
  const std::string* want_pass = Find(scenario, "password");
  const std::string* want_db = Find(scenario, "connect");
  if (!want_user || !want_pass || !want_db || user != *want_user || pass != *want_pass)
    return Fail(err, 1017, "ORA-01017: invalid username/password; logon denied\n");
  if (database != *want_db)
    return Fail(err, 12154, "ORA-12154: TNS:could not resolve the connect identifier specified\n");
  *svchp = reinterpret_cast<OCISvcCtx*>(static_cast<Handle*>(Track(new Svc(env))));
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCILogoff(OCISvcCtx* svchp, OCIError* errhp) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  Svc* svc = Live<Svc>(svchp, OCI_HTYPE_SVCCTX);
  if (svc == nullptr || Live<Err>(errhp, OCI_HTYPE_ERROR) == nullptr) return OCI_INVALID_HANDLE;
  Note(ReadScenario(), "logoff");
  Global().live.erase(svc);
  delete svc;
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIStmtPrepare(OCIStmt* stmtp, OCIError* errhp, const OraText* stmt,
                                     ub4 stmt_len, ub4 language, ub4 /*mode*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Stmt* statement = Live<Stmt>(stmtp, OCI_HTYPE_STMT);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (statement == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (sword status; Injected(scenario, "OCIStmtPrepare", err, &status)) return status;
  if (language != OCI_NTV_SYNTAX) return Fail(err, 1003, "ORA-01003: no statement parsed\n");
  statement->text = Text(stmt, stmt_len);
  statement->binds.clear();
  statement->has_define = false;
  Note(scenario, "prepare " + statement->text);
  return OCI_SUCCESS;
}

#ifndef FAKE_OCI_WITHOUT_BIND
FAKE_OCI_EXPORT sword OCIBindByName(OCIStmt* stmtp, OCIBind** bindpp, OCIError* errhp,
                                    const OraText* placeholder, sb4 placeh_len, void* valuep,
                                    sb4 value_sz, ub2 dty, void* /*indp*/, ub2* /*alenp*/,
                                    ub2* /*rcodep*/, ub4 /*maxarr_len*/, ub4* /*curelep*/,
                                    ub4 /*mode*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Stmt* statement = Live<Stmt>(stmtp, OCI_HTYPE_STMT);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (statement == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (sword status; Injected(scenario, "OCIBindByName", err, &status)) return status;
  const std::string name = Text(placeholder, static_cast<ub4>(placeh_len));
  if (statement->text.find(name) == std::string::npos)
    return Fail(err, 1036, "ORA-01036: illegal variable name/number\n");
  statement->binds[name] = BindSlot{valuep, value_sz, dty};
  Note(scenario, "bind " + name + " " + std::to_string(dty) + " " + std::to_string(value_sz));
  *bindpp = reinterpret_cast<OCIBind*>(&Global().child);
  return OCI_SUCCESS;
}
#endif

FAKE_OCI_EXPORT sword OCIDefineByPos(OCIStmt* stmtp, OCIDefine** defnpp, OCIError* errhp,
                                     ub4 position, void* valuep, sb4 value_sz, ub2 dty, void* indp,
                                     ub2* /*rlenp*/, ub2* /*rcodep*/, ub4 /*mode*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Stmt* statement = Live<Stmt>(stmtp, OCI_HTYPE_STMT);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (statement == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (position != 1) return Fail(err, 1007, "ORA-01007: variable not in select list\n");
  statement->define = BindSlot{valuep, value_sz, dty};
  statement->define_indicator = static_cast<sb2*>(indp);
  statement->has_define = true;
  *defnpp = reinterpret_cast<OCIDefine*>(&Global().child);
  return OCI_SUCCESS;
}

FAKE_OCI_EXPORT sword OCIStmtFetch2(OCIStmt* stmtp, OCIError* errhp, ub4 nrows, ub2 orientation,
                                    sb4 /*fetchOffset*/, ub4 /*mode*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  Stmt* statement = Live<Stmt>(stmtp, OCI_HTYPE_STMT);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (statement == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (nrows != 1 || orientation != OCI_FETCH_NEXT)
    return Fail(err, 1002, "ORA-01002: fetch out of sequence\n");
  if (statement->next_row >= statement->rows.size()) return OCI_NO_DATA;
  return Deliver(*statement, statement->rows[statement->next_row++]);
}

FAKE_OCI_EXPORT sword OCIStmtExecute(OCISvcCtx* svchp, OCIStmt* stmtp, OCIError* errhp, ub4 iters,
                                     ub4 /*rowoff*/, const OCISnapshot*, OCISnapshot*,
                                     ub4 /*mode*/) {
  std::lock_guard<std::mutex> lock(Global().mutex);
  const Scenario scenario = ReadScenario();
  Svc* svc = Live<Svc>(svchp, OCI_HTYPE_SVCCTX);
  Stmt* statement = Live<Stmt>(stmtp, OCI_HTYPE_STMT);
  Err* err = Live<Err>(errhp, OCI_HTYPE_ERROR);
  if (svc == nullptr || statement == nullptr || err == nullptr) return OCI_INVALID_HANDLE;
  if (sword status; Injected(scenario, "OCIStmtExecute", err, &status)) return status;
  return Execute(scenario, *svc, *statement, err, iters);
}
