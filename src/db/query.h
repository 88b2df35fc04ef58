// Query: one OCI statement handle of a DBSession, for SQL and PL/SQL blocks with named binds.
// Binds point at the caller's variables, which must stay in place until the statement is
// prepared again or destroyed; a new Prepare drops the binds of the previous text.
#ifndef PELICOR_DB_QUERY_H_
#define PELICOR_DB_QUERY_H_

#include <string>

#include "db/db_session.h"
#include "db/oci_handle.h"

namespace db {

class Query {
 public:
  explicit Query(DBSession& session);
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  void Prepare(const std::string& text);
  // `name` is the placeholder with its colon (":result").
  void BindInteger(const char* name, int* value);
  // A text buffer of `size` bytes (NUL included) that OCI fills on output.
  void BindText(const char* name, char* buffer, int size);
  // The first column as text into `buffer` of `size` bytes; `*indicator` is -1 for NULL.
  void DefineText(char* buffer, int size, oci::sb2* indicator);
  // Executes once (for a query: fetches the first row); false when a query had no row.
  bool Execute();
  // Rows the client library fetches ahead in one round trip (1 by default).
  void SetPrefetchRows(unsigned int rows);
  // The next row of an executed query into the defined buffer; false after the last.
  bool Fetch();

 private:
  DBSession& session_;
  OciHandle statement_;
};

}  // namespace db

#endif  // PELICOR_DB_QUERY_H_
