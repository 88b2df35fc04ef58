#include "transport/utl/diag_trace_reader.h"

#include <cstring>
#include <vector>

#include "db/db_session.h"
#include "db/query.h"
#include "support/exceptions.h"

namespace transport {

namespace {

constexpr const char* kFile = "DiagTraceReader";
constexpr const char* kClass = "DiagTraceReader";

// Followed by the SID, " and s.serial# = " and the serial number.
constexpr const char* kTraceFileSql =
    "select /* zantiv */ p.tracefile from v$process p, v$session s where p.addr=s.paddr and "
    "s.sid = ";
constexpr const char* kContentsSql =
    "select /* zantiv */ payload from v$diag_trace_file_contents where trace_filename = :name "
    "order by line_number";

// "/u01/app/oracle/diag/rdbms/orcl/orcl/trace/orcl_ora_4242.trc" -> "orcl_ora_4242.trc"; the
// view names files without their directory. Windows servers write backslashes.
std::string BaseName(const std::string& path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

DiagTraceReader::DiagTraceReader(db::DBSession& session) : session_(session) {}
DiagTraceReader::~DiagTraceReader() = default;

std::string DiagTraceReader::SessionTraceFile(long sid, long serial) {
  const std::string sql =
      kTraceFileSql + std::to_string(sid) + " and s.serial# = " + std::to_string(serial);
  const std::optional<std::string> path = session_.QueryText(sql);
  if (!path || path->empty()) {
    throw exceptions::ExceptionBase(kFile, kClass, "SessionTraceFile",
                                    "No trace file found for session " + std::to_string(sid) + "," +
                                        std::to_string(serial) + ".");
  }
  return BaseName(*path);
}

bool DiagTraceReader::OpenLines(const std::string& name, std::uint64_t offset) {
  CloseLines();
  name_ = name;
  query_ = session_.NewQuery();
  query_->Prepare(kContentsSql);
  // A row per line: without rows fetched ahead, every line would cost a round trip.
  query_->SetPrefetchRows(kPrefetchRows);
  query_->BindText(":name", name_.data(), static_cast<int>(name_.size() + 1));
  query_->DefineText(payload_.data(), kPayloadSize, &indicator_);
  row_pending_ = query_->Execute();
  if (!row_pending_) {
    query_.reset();
    return false;
  }
  std::uint64_t skipped = 0;
  std::string_view line;
  while (skipped < offset && ReadNextLine(&line)) skipped += line.size();
  return true;
}

bool DiagTraceReader::ReadNextLine(std::string_view* line) {
  if (!query_) return false;
  if (!row_pending_ && !query_->Fetch()) return false;
  row_pending_ = false;
  // A NULL payload is an empty line; a payload holds its line end, except perhaps the last.
  line_.assign(indicator_ == -1 ? "" : payload_.data(),
               indicator_ == -1 ? 0 : strnlen(payload_.data(), payload_.size()));
  if (line_.empty() || line_.back() != '\n') line_ += '\n';
  *line = line_;
  return true;
}

void DiagTraceReader::CloseLines() {
  query_.reset();
  row_pending_ = false;
}

}  // namespace transport
