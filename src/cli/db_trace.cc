#include "cli/db_trace.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "cli/password_file.h"
#include "db/db_session.h"
#include "support/exceptions.h"
#include "transport/utl/diag_trace_reader.h"
#include "transport/utl/utl_manager.h"

namespace cli {

namespace {

constexpr const char* kPasswordVariable = "PELICOR_DB_PASSWORD";
// The command does not know the server's release before it connects; it asks for the version 8
// call interface, which every client library that can be had offers.
constexpr std::uint16_t kInterfaceMajor = 8;

struct Account {
  std::string user;
  std::string connect;
};

// "scott@orcl" -> scott, orcl; "scott" -> scott and the local default database.
Account SplitConnect(const std::string& text) {
  const std::size_t at = text.find('@');
  if (at == 0) throw std::runtime_error("no user name in --connect " + text);
  if (at == std::string::npos) return {text, ""};
  return {text.substr(0, at), text.substr(at + 1)};
}

}  // namespace

std::string DbPassword(const std::string& password_file) {
  if (!password_file.empty()) return ReadPasswordFile(password_file);
  if (const char* password = std::getenv(kPasswordVariable)) return password;
  throw std::runtime_error(std::string("no database password: give --password-file FILE or set ") +
                           kPasswordVariable);
}

DbTrace::DbTrace(const DbTarget& target) : target_(target) {
  const Account account = SplitConnect(target.connect);
  const std::string password = DbPassword(target.password_file);
  if (target.via != DbVia::kDiag) {
    transport::UtlConnectInfo info;
    info.major = kInterfaceMajor;
    info.user_name = account.user;
    info.password = password;
    info.connect = account.connect;
    package_ = std::make_unique<transport::CUtlManager>();
    package_->SetConnectInfo(info);
    package_->Connect();
    try {
      package_->CheckPackage();
    } catch (const exceptions::ExceptionBase&) {
      if (target.via == DbVia::kPackage) throw;
      package_.reset();  // no package here: read through the view
    }
  }
  if (!package_) {
    session_ = db::DBSession::Logon(account.user, password, account.connect,
                                    db::Release{kInterfaceMajor, 0});
    diag_ = std::make_unique<transport::DiagTraceReader>(*session_);
  }
}

DbTrace::~DbTrace() = default;

std::string DbTrace::Name() {
  if (!target_.file.empty()) {
    // The package opens a file it cannot read without complaint and then reads nothing.
    if (package_ && !package_->ValidateFile(package_->DumpDirectory(), target_.file)) {
      throw std::runtime_error("the trace package cannot read " + target_.file + " in " +
                               package_->DumpDirectory());
    }
    return target_.file;
  }
  if (target_.sid < 0 || target_.serial < 0) {
    throw std::runtime_error("give --file NAME, or --sid N and --serial N");
  }
  if (package_) {
    return package_->CreateUtlFileName(
        std::to_string(target_.sid) + "," + std::to_string(target_.serial), "");
  }
  return diag_->SessionTraceFile(target_.sid, target_.serial);
}

parser::LineSource& DbTrace::Source() {
  if (package_) return *package_;
  return *diag_;
}

}  // namespace cli
