// The trace of `pelicor db`: a logon, the way of reading that the server offers, and the name of
// the file to read (given, or found for a session).
#ifndef PELICOR_CLI_DB_TRACE_H_
#define PELICOR_CLI_DB_TRACE_H_

#include <memory>
#include <string>

#include "parser/line_source.h"

namespace db {
class DBSession;
}  // namespace db
namespace transport {
class CUtlManager;
class DiagTraceReader;
}  // namespace transport

namespace cli {

enum class DbVia { kAuto, kPackage, kDiag };

struct DbTarget {
  std::string connect;  // USER@CONNECT_STRING
  std::string password_file;
  DbVia via = DbVia::kAuto;
  long sid = -1;
  long serial = -1;
  std::string file;  // instead of sid and serial
};

class DbTrace {
 public:
  // Logs on and picks the way of reading: the package when asked for or, by default, when it
  // answers; the view otherwise. Throws on a failed logon or a missing password.
  explicit DbTrace(const DbTarget& target);
  ~DbTrace();
  DbTrace(const DbTrace&) = delete;
  DbTrace& operator=(const DbTrace&) = delete;

  // The trace file's name: the one given, else the session's.
  std::string Name();
  parser::LineSource& Source();
  bool ViaPackage() const { return package_ != nullptr; }

 private:
  DbTarget target_;
  std::unique_ptr<transport::CUtlManager> package_;
  std::unique_ptr<db::DBSession> session_;
  std::unique_ptr<transport::DiagTraceReader> diag_;
};

// The first line of the password file, else PELICOR_DB_PASSWORD.
std::string DbPassword(const std::string& password_file);

}  // namespace cli

#endif  // PELICOR_CLI_DB_TRACE_H_
