// DBSession: one database session over OCI, either borrowed from the host (its open service
// context) or our own (a logon with user name, password and connect string). It runs a query
// for one text value and hands out Query objects for PL/SQL blocks with binds.
//
// Failures of an OCI call are thrown as exceptions::OracleException with the Oracle error text
// unchanged as the message and the Oracle error code; the session is the OracleErrorSource.
// Every handle the session allocates is freed by its destructor (a borrowed service context and
// its environment stay the host's). One thread uses a session at a time.
#ifndef PELICOR_DB_DB_SESSION_H_
#define PELICOR_DB_DB_SESSION_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "db/oci_api.h"
#include "db/oci_handle.h"
#include "db/oci_library.h"
#include "support/exceptions.h"

namespace db {

// The Oracle release a host names, as major and minor number.
struct Release {
  int major = 0;
  int minor = 0;
};

class Query;

class DBSession : public exceptions::OracleErrorSource {
 public:
  // Over the host's service context (an OCISvcCtx*, passed at full width); its environment comes
  // from the handle. Release 7 and older fail: their call interface no longer exists.
  static std::unique_ptr<DBSession> Attach(std::uint64_t service_context, Release release);
  // A session of our own, logged on with `user`/`password` at `connect` (a TNS alias or an
  // EZConnect string; empty for the local default database).
  static std::unique_ptr<DBSession> Logon(const std::string& user, const std::string& password,
                                          const std::string& connect, Release release);
  ~DBSession() override;
  DBSession(const DBSession&) = delete;
  DBSession& operator=(const DBSession&) = delete;

  // The first column of the first row of `sql` as text; nothing when the query has no row or
  // that column is NULL. Values longer than 4000 bytes are cut there.
  std::optional<std::string> QueryText(const std::string& sql);
  // A statement handle of this session, for PL/SQL with binds; it must not outlive the session.
  std::unique_ptr<Query> NewQuery();

  // exceptions::OracleErrorSource
  std::int32_t LastError(std::string* text) override;
  void ResetError() override;

  // For Query: raises the OracleException of a failed call, naming the call as the method.
  // OCI_SUCCESS, OCI_SUCCESS_WITH_INFO and OCI_NO_DATA pass and are returned.
  oci::sword Check(oci::sword status, const char* call);
  const OciFunctions& Api() const { return library_->Api(); }
  oci::OCIEnv* Environment() const { return env_; }
  oci::OCIError* ErrorHandle() const { return error_.get<oci::OCIError>(); }
  oci::OCISvcCtx* ServiceContext() const { return service_; }

 private:
  explicit DBSession(std::shared_ptr<const OciLibrary> library);
  void CreateOwnEnvironment();

  std::shared_ptr<const OciLibrary> library_;
  OciHandle own_env_;  // only for a logon
  oci::OCIEnv* env_ = nullptr;
  OciHandle error_;
  oci::OCISvcCtx* service_ = nullptr;
  bool logged_on_ = false;  // service_ is ours: log off at the end
  oci::sword last_status_ = oci::OCI_SUCCESS;
};

// Fails unless `release` offers the version 8 call interface (Oracle 8.0 or later).
void RequireVersion8(Release release);

}  // namespace db

#endif  // PELICOR_DB_DB_SESSION_H_
