#include "db/query.h"

#include <cstring>

namespace db {

namespace {
const oci::OraText* Name(const char* text) {
  return reinterpret_cast<const oci::OraText*>(text);
}
oci::sb4 NameLength(const char* text) {
  return static_cast<oci::sb4>(std::strlen(text));
}
}  // namespace

Query::Query(DBSession& session) : session_(session) {
  oci::sword status = oci::OCI_SUCCESS;
  statement_ = AllocateHandle(session.Api(), session.Environment(), oci::OCI_HTYPE_STMT, &status);
  if (statement_.get<void>() == nullptr) session.Check(status, "OCIHandleAlloc");
}

void Query::Prepare(const std::string& text) {
  session_.Check(session_.Api().OCIStmtPrepare(
                     statement_.get<oci::OCIStmt>(), session_.ErrorHandle(), Name(text.c_str()),
                     static_cast<oci::ub4>(text.size()), oci::OCI_NTV_SYNTAX, oci::OCI_DEFAULT),
                 "OCIStmtPrepare");
}

void Query::BindInteger(const char* name, int* value) {
  oci::OCIBind* bind = nullptr;  // freed with the statement
  session_.Check(session_.Api().OCIBindByName(
                     statement_.get<oci::OCIStmt>(), &bind, session_.ErrorHandle(), Name(name),
                     NameLength(name), value, static_cast<oci::sb4>(sizeof *value), oci::SQLT_INT,
                     nullptr, nullptr, nullptr, 0, nullptr, oci::OCI_DEFAULT),
                 "OCIBindByName");
}

void Query::BindText(const char* name, char* buffer, int size) {
  oci::OCIBind* bind = nullptr;
  session_.Check(
      session_.Api().OCIBindByName(statement_.get<oci::OCIStmt>(), &bind, session_.ErrorHandle(),
                                   Name(name), NameLength(name), buffer, size, oci::SQLT_STR,
                                   nullptr, nullptr, nullptr, 0, nullptr, oci::OCI_DEFAULT),
      "OCIBindByName");
}

void Query::DefineText(char* buffer, int size, oci::sb2* indicator) {
  oci::OCIDefine* define = nullptr;  // freed with the statement
  session_.Check(session_.Api().OCIDefineByPos(
                     statement_.get<oci::OCIStmt>(), &define, session_.ErrorHandle(), 1, buffer,
                     size, oci::SQLT_STR, indicator, nullptr, nullptr, oci::OCI_DEFAULT),
                 "OCIDefineByPos");
}

bool Query::Execute() {
  const oci::sword status =
      session_.Check(session_.Api().OCIStmtExecute(
                         session_.ServiceContext(), statement_.get<oci::OCIStmt>(),
                         session_.ErrorHandle(), 1, 0, nullptr, nullptr, oci::OCI_DEFAULT),
                     "OCIStmtExecute");
  return status != oci::OCI_NO_DATA;
}

void Query::SetPrefetchRows(unsigned int rows) {
  oci::ub4 count = rows;
  session_.Check(session_.Api().OCIAttrSet(statement_.get<void>(), oci::OCI_HTYPE_STMT, &count, 0,
                                           oci::OCI_ATTR_PREFETCH_ROWS, session_.ErrorHandle()),
                 "OCIAttrSet");
}

bool Query::Fetch() {
  const oci::sword status = session_.Check(
      session_.Api().OCIStmtFetch2(statement_.get<oci::OCIStmt>(), session_.ErrorHandle(), 1,
                                   oci::OCI_FETCH_NEXT, 0, oci::OCI_DEFAULT),
      "OCIStmtFetch2");
  return status != oci::OCI_NO_DATA;
}

}  // namespace db
