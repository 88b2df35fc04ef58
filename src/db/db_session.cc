#include "db/db_session.h"

#include <array>
#include <cstring>
#include <utility>

#include "db/query.h"

namespace db {

namespace {

constexpr const char* kFile = "DBSession";
constexpr const char* kClass = "db::DBSession";
// The longest VARCHAR2 a query hands back to us, and its NUL.
constexpr int kTextColumnSize = 4001;

[[noreturn]] void Raise(const char* method, std::string message) {
  throw exceptions::ExceptionBase(kFile, kClass, method, std::move(message));
}

const oci::OraText* OraText(const std::string& text) {
  return reinterpret_cast<const oci::OraText*>(text.c_str());
}

oci::ub4 Length(const std::string& text) {
  return static_cast<oci::ub4>(text.size());
}

}  // namespace

void RequireVersion8(Release release) {
  if (release.major >= 8) return;
  Raise("DBSession", "Oracle release " + std::to_string(release.major) + "." +
                         std::to_string(release.minor) +
                         " is not supported: the version 8 call interface (Oracle 8.0 or "
                         "later) is needed.");
}

DBSession::DBSession(std::shared_ptr<const OciLibrary> library) : library_(std::move(library)) {}

DBSession::~DBSession() {
  if (logged_on_) Api().OCILogoff(service_, ErrorHandle());
  error_.Reset();
  own_env_.Reset();
}

void DBSession::CreateOwnEnvironment() {
  oci::OCIEnv* env = nullptr;
  const oci::sword status =
      Api().OCIEnvCreate(&env, oci::OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  if (env != nullptr) own_env_ = OciHandle(&Api(), env, oci::OCI_HTYPE_ENV);
  if (status != oci::OCI_SUCCESS || env == nullptr) {
    Raise("OCIEnvCreate", "The Oracle client library could not create an OCI environment.");
  }
  env_ = env;
}

std::unique_ptr<DBSession> DBSession::Attach(std::uint64_t service_context, Release release) {
  RequireVersion8(release);
  std::unique_ptr<DBSession> session(new DBSession(OciLibrary::Load()));
  session->service_ =
      reinterpret_cast<oci::OCISvcCtx*>(static_cast<std::uintptr_t>(service_context));
  // OCIAttrGet wants an error handle, and error handles belong to an environment: a short-lived
  // one of our own serves to ask the host's context for its environment.
  session->CreateOwnEnvironment();
  oci::sword status = oci::OCI_SUCCESS;
  session->error_ = AllocateHandle(session->Api(), session->env_, oci::OCI_HTYPE_ERROR, &status);
  if (session->error_.get<void>() == nullptr)
    Raise("OCIHandleAlloc", "OCI could not allocate an error handle.");
  oci::OCIEnv* host_env = nullptr;
  session->Check(session->Api().OCIAttrGet(session->service_, oci::OCI_HTYPE_SVCCTX, &host_env,
                                           nullptr, oci::OCI_ATTR_ENV, session->ErrorHandle()),
                 "OCIAttrGet");
  if (host_env == nullptr)
    Raise("OCIAttrGet", "The Oracle connection handle has no OCI environment.");
  session->error_ = AllocateHandle(session->Api(), host_env, oci::OCI_HTYPE_ERROR, &status);
  session->own_env_.Reset();
  session->env_ = host_env;
  if (session->error_.get<void>() == nullptr)
    Raise("OCIHandleAlloc", "OCI could not allocate an error handle.");
  return session;
}

std::unique_ptr<DBSession> DBSession::Logon(const std::string& user, const std::string& password,
                                            const std::string& connect, Release release) {
  RequireVersion8(release);
  std::unique_ptr<DBSession> session(new DBSession(OciLibrary::Load()));
  session->CreateOwnEnvironment();
  oci::sword status = oci::OCI_SUCCESS;
  session->error_ = AllocateHandle(session->Api(), session->env_, oci::OCI_HTYPE_ERROR, &status);
  if (session->error_.get<void>() == nullptr)
    Raise("OCIHandleAlloc", "OCI could not allocate an error handle.");
  oci::OCISvcCtx* service = nullptr;
  status = session->Api().OCILogon(session->env_, session->ErrorHandle(), &service, OraText(user),
                                   Length(user), OraText(password), Length(password),
                                   OraText(connect), Length(connect));
  if (service != nullptr && (status == oci::OCI_SUCCESS || status == oci::OCI_SUCCESS_WITH_INFO)) {
    session->service_ = service;
    session->logged_on_ = true;
  }
  session->Check(status, "OCILogon");
  return session;
}

oci::sword DBSession::Check(oci::sword status, const char* call) {
  if (status == oci::OCI_SUCCESS || status == oci::OCI_SUCCESS_WITH_INFO ||
      status == oci::OCI_NO_DATA) {
    return status;
  }
  last_status_ = status;
  throw exceptions::OracleException(*this, kFile, kClass, call);
}

std::int32_t DBSession::LastError(std::string* text) {
  if (last_status_ == oci::OCI_INVALID_HANDLE) {
    *text = "OCI_INVALID_HANDLE: an OCI handle handed to the client library is not valid.";
    return 0;
  }
  std::array<oci::OraText, oci::OCI_ERROR_MAXMSG_SIZE> buffer{};
  oci::sb4 code = 0;
  const oci::sword status =
      Api().OCIErrorGet(ErrorHandle(), 1, nullptr, &code, buffer.data(),
                        static_cast<oci::ub4>(buffer.size()), oci::OCI_HTYPE_ERROR);
  if (status != oci::OCI_SUCCESS) {
    *text = "OCI call failed with status " + std::to_string(last_status_) + " and no error record.";
    return 0;
  }
  const char* chars = reinterpret_cast<const char*>(buffer.data());
  text->assign(chars, strnlen(chars, buffer.size()));
  return code;
}

void DBSession::ResetError() {
  last_status_ = oci::OCI_SUCCESS;
}

std::optional<std::string> DBSession::QueryText(const std::string& sql) {
  Query query(*this);
  query.Prepare(sql);
  std::array<char, kTextColumnSize> value{};
  oci::sb2 indicator = 0;
  query.DefineText(value.data(), kTextColumnSize, &indicator);
  if (!query.Execute() || indicator == -1) return std::nullopt;
  return std::string(value.data(), strnlen(value.data(), value.size()));
}

std::unique_ptr<Query> DBSession::NewQuery() {
  return std::make_unique<Query>(*this);
}

}  // namespace db
