// The raise sites' texts of CUtlManager and the SQL it sends, shared by its source files.
// Internal.
#ifndef PELICOR_TRANSPORT_UTL_UTL_RAISE_H_
#define PELICOR_TRANSPORT_UTL_UTL_RAISE_H_

#include <string>
#include <utility>

#include "support/exceptions.h"

namespace transport::utl {

constexpr const char* kFile = "UtlManager";
constexpr const char* kClass = "CUtlManager";
// The method text of every dictionary query, misspelled as hosts expect it.
constexpr const char* kQueryMethod = "GetOracleProcerssID";

[[noreturn]] inline void Raise(const char* method, std::string message) {
  throw exceptions::ExceptionBase(kFile, kClass, method, std::move(message));
}

// The dictionary queries; the comment marks our statements in the server's own traces.
constexpr const char* kDumpDirectorySql =
    "select /* zantiv */ NVL(value,'NONE') from sys.v_$parameter where name='user_dump_dest'";
constexpr const char* kOsTypeSql =
    "select /* zantiv */ upper(banner) from sys.v_$version where upper(banner) like 'TNS%'";
constexpr const char* kOsVersionSql =
    "select version  from sys.product_component_version where product like 'Oracle%'";
constexpr const char* kPlsqlVersionSql =
    "select /* zantiv */ banner from sys.v_$version where upper(banner) like '%PL/SQL%%.%'";
constexpr const char* kInstanceNameSql =
    "select /* zantiv */ NVL(LOWER(name),'NONE') from sys.v_$database";
// Followed by the SID, " and s.SERIAL# = " and the serial number.
constexpr const char* kProcessIdSql =
    "select /* zantiv */ p.spid from sys.v_$process p, sys.v_$session s where p.addr=s.paddr "
    "and s.SID = ";
constexpr const char* kHostNameSql = "select host_name from v$instance";

// The package's three calls.
constexpr const char* kValidateBlock =
    "BEGIN BEGIN :result := vandel_trace_file_io.validate_file( '";
constexpr const char* kOpenBlock = "BEGIN BEGIN :result := vandel_trace_file_io.open_file( '";
constexpr const char* kReadBlock =
    "BEGIN BEGIN :result := vandel_trace_file_io.read_line(:buf, :len); END; END;";

}  // namespace transport::utl

#endif  // PELICOR_TRANSPORT_UTL_UTL_RAISE_H_
