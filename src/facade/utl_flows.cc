// The UTL methods: the trace file read through the host's database connection by a PL/SQL
// package on the server. This build has no UTL transport; the methods check their arguments,
// record what they were given as the real flows do, and then fail.
#include "facade/method_rules.h"
#include "facade/pelicor.h"

namespace facade {

namespace {

constexpr const char* kUtlUnavailable = "UTL transport is not available in this build";

UtlConnectInfo MakeUtlConnectInfo(std::uint64_t oracle_handle, std::uint16_t ver,
                                  const char* username, const char* password, const char* dsn) {
  UtlConnectInfo info;
  info.oracle_handle = oracle_handle;
  info.release = DecodeOracleRelease(ver);
  info.user_name = Text(username);
  info.password = Text(password);
  info.dsn = Text(dsn);
  return info;
}

}  // namespace

int CPelicor::UtlValidation(std::uint64_t /*oracleHandle*/, std::uint16_t /*ver*/,
                            const char* username, const char* password, const char* dsn,
                            const char* udump, const char* sid, const char* PID, std::string* msg) {
  if (AnyMissing({username, password, dsn, udump, sid})) {
    return RefuseArguments("username/pwd/tns/udump/sid is empty or NULL!", msg);
  }
  if (AnyMissing({PID})) return RefuseArguments("PID is empty or NULL!", msg);
  return RunMethod(msg, [&] {
    // Chosen before connecting: a validation that fails later still names UTL.
    transport_kind_ = kUtl;
    ThrowUnavailable("UtlValidation", kUtlUnavailable);
  });
}

int CPelicor::ZantivUtlTrcStartUp(std::uint64_t oracleHandle, std::uint16_t ver,
                                  const char* username, const char* password, const char* dsn,
                                  const char* udump, const char* /*sid*/, const char* /*PID*/,
                                  const char* /*marker*/, std::string* outputXML,
                                  std::string* msg) {
  outputXML->clear();
  if (AnyMissing({username, password, udump})) {
    return RefuseArguments("username/password/udump can not be empty! Check registry setting.",
                           msg);
  }
  return RunMethod(msg, [&] {
    transport_kind_ = kUtl;
    utl_info_ = MakeUtlConnectInfo(oracleHandle, ver, username, password, dsn);
    // The connected flow goes on to name the trace file, answer its XML name and keep
    // `marker` for ZantivGetTraceInfo.
    ThrowUnavailable("ZantivUtlTrcStartUp", kUtlUnavailable);
  });
}

void CPelicor::ParseSessionTraceOverUtl(parser::CTraceParser& /*parser*/) {
  ThrowUnavailable("ZantivGetTraceInfo", kUtlUnavailable);
}

}  // namespace facade
