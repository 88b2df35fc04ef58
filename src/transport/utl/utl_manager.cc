// CUtlManager's connection, its dictionary queries and the line stream through the package.
#include "transport/utl/utl_manager.h"

#include <algorithm>
#include <cstring>

#include "db/db_session.h"
#include "db/query.h"
#include "parser/field_scanner.h"
#include "transport/utl/utl_raise.h"

namespace transport {

using utl::Raise;

namespace {

// The package answers this from open_file when the trace id is not on exactly one line.
constexpr int kTraceIdNotUnique = 20014;

// "%d.%d.%d.%d.%d" from where `scanner` stands; numbers not reached stay 0.
std::array<int, 5> ScanFiveNumbers(parser::FieldScanner scanner) {
  std::array<std::int32_t, 5> numbers{};
  scanner.Int32(&numbers[0]);
  for (std::size_t i = 1; i < numbers.size(); ++i) scanner.Literal(".").Int32(&numbers[i]);
  return {numbers[0], numbers[1], numbers[2], numbers[3], numbers[4]};
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

}  // namespace

CUtlManager::CUtlManager() = default;
CUtlManager::~CUtlManager() = default;

// --- Connection ---------------------------------------------------------------------------

void CUtlManager::SetConnectInfo(const UtlConnectInfo& info) {
  info_ = info;
}

void CUtlManager::Connect(std::uint64_t handle, std::uint16_t major, std::uint16_t minor) {
  info_.handle = handle;
  info_.major = major;
  info_.minor = minor;
  Connect();
}

void CUtlManager::Connect() {
  query_.reset();
  session_.reset();
  const db::Release release{info_.major, info_.minor};
  if (info_.handle != 0) {
    session_ = db::DBSession::Attach(info_.handle, release);
  } else if (!info_.user_name.empty()) {
    session_ = db::DBSession::Logon(info_.user_name, info_.password, info_.connect, release);
  }
  if (!session_) Raise("CUtlManager", "UTL failed to connect to Oracle using OCI dll!");
}

db::DBSession& CUtlManager::Session() {
  if (!session_) Raise("CUtlManager", "UTL failed to connect to Oracle using OCI dll!");
  return *session_;
}

// --- Dictionary queries ---------------------------------------------------------------------

std::string CUtlManager::QueryOrRaise(const std::string& sql, const char* message) {
  std::optional<std::string> value = Session().QueryText(sql);
  if (!value) Raise(utl::kQueryMethod, message);
  return *value;
}

const std::string& CUtlManager::DumpDirectory() {
  if (!dump_directory_) {
    dump_directory_ = QueryOrRaise(utl::kDumpDirectorySql, "UTL did not retrieve user_dump_dest!");
  }
  return *dump_directory_;
}

// "TNS for 32-bit Windows: Version 9.2.0.1.0 - Production"
int CUtlManager::OsType() {
  const std::string banner =
      Upper(QueryOrRaise(utl::kOsTypeSql, "UTL did not retrieve Oracle OS type!"));
  if (banner.find("WINDOWS") != std::string::npos) return kUtlWindows;
  if (banner.find("VMS") != std::string::npos) return kUtlVms;
  if (banner.find("NETWARE") != std::string::npos) return kUtlNetware;
  return kUtlOtherOs;
}

std::array<int, 5> CUtlManager::OsVersion() {
  const std::string version =
      QueryOrRaise(utl::kOsVersionSql, "UTL did not retrieve Oracle OS version!");
  return ScanFiveNumbers(parser::FieldScanner(version));
}

// "PL/SQL Release 9.2.0.1.0 - Production"
std::array<int, 5> CUtlManager::PlsqlVersion() {
  const std::string banner =
      QueryOrRaise(utl::kPlsqlVersionSql, "UTL did not retrieve Oracle PL/SQL version!");
  parser::FieldScanner scanner(banner);
  scanner.Literal("PL/SQL Release ");
  return ScanFiveNumbers(scanner);
}

std::string CUtlManager::SessionProcessId(long sid, long serial) {
  const std::string sql = std::string(utl::kProcessIdSql) + std::to_string(sid) +
                          " and s.SERIAL# = " + std::to_string(serial);
  return QueryOrRaise(sql, "UTL did not retrieve session process ID!");
}

std::string CUtlManager::InstanceName() {
  return QueryOrRaise(utl::kInstanceNameSql, "UTL did not retrieve Oracle instance name!");
}

std::string CUtlManager::HostName() {
  return QueryOrRaise(utl::kHostNameSql, "UTL did not retrieve Oracle server name!");
}

void CUtlManager::ValidatePlsqlVersion() {
  const std::array<int, 5> version = PlsqlVersion();
  if (version[0] >= 3 || (version[0] == 2 && version[1] >= 3)) return;
  Raise("ValidatePlsqlVersion", "UTL is not supported by this version of PL/SQL!");
}

// --- The package ------------------------------------------------------------------------------

int CUtlManager::RunValidate(const std::string& directory, const std::string& name) {
  db::Query query(Session());
  query.Prepare(utl::kValidateBlock + directory + "', '" + name + "'); END; END;");
  int result = 0;
  query.BindInteger(":result", &result);
  query.Execute();
  return result;
}

bool CUtlManager::ValidateFile(const std::string& directory, const std::string& name) {
  return RunValidate(directory, name) != 0;
}

void CUtlManager::CheckPackage() {
  try {
    ValidateFile("test", "*");
  } catch (...) {
    // Whatever failed (the package missing, not granted, no session), the caller learns only
    // that the package cannot be used.
    Raise(utl::kQueryMethod,
          "UTL did not find a valid Vandel file IO package!  Or the package is not accessible "
          "to the user.");
  }
}

void CUtlManager::OpenDataStream(const std::string& file_name, const std::string& trace_id) {
  const std::string directory = DumpDirectory();
  if (!query_) query_ = Session().NewQuery();
  query_->Prepare(utl::kOpenBlock + directory + "', '" + file_name + "', 'R', '" + trace_id +
                  "'); END; END;");
  result_ = 0;
  query_->BindInteger(":result", &result_);
  query_->Execute();
  if (result_ == kTraceIdNotUnique) {
    Raise("OpenDataStream", "UTL did not find the unique TRACE ID!");
  }
  query_->Prepare(utl::kReadBlock);
  query_->BindInteger(":result", &result_);
  query_->BindInteger(":len", &line_length_);
  query_->BindText(":buf", line_.data(), kLineBufferSize);
}

const char* CUtlManager::ReadLine() {
  if (!query_) return nullptr;
  line_.fill('\0');
  line_length_ = 0;
  result_ = 0;
  query_->Execute();
  if (result_ != 0) return nullptr;
  // The buffer holds at most kLineBufferSize - 1 bytes of text; a length beyond that (or below
  // 0) cannot be true of what arrived.
  const auto length = static_cast<std::size_t>(std::clamp(line_length_, 0, kLineBufferSize - 1));
  line_length_ = static_cast<int>(length);
  line_[length] = '\n';
  line_[length + 1] = '\0';
  return line_.data();
}

void CUtlManager::CloseDataStream() {
  query_.reset();
}

// --- parser::LineSource -----------------------------------------------------------------------

bool CUtlManager::OpenLines(const std::string& name, std::uint64_t offset) {
  OpenDataStream(name, "");
  std::uint64_t skipped = 0;
  std::string_view line;
  while (skipped < offset && ReadNextLine(&line)) skipped += line.size();
  return true;
}

bool CUtlManager::OpenLinesAfterMarker(const std::string& name, const std::string& marker) {
  OpenDataStream(name, marker);
  return true;
}

bool CUtlManager::ReadNextLine(std::string_view* line) {
  if (ReadLine() == nullptr) return false;
  *line = std::string_view(line_.data(), static_cast<std::size_t>(line_length_) + 1);
  return true;
}

void CUtlManager::CloseLines() {
  CloseDataStream();
}

}  // namespace transport
