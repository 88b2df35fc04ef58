// The UTL methods: the session's trace file found and read through the database, by the host's
// own connection (or a logon of ours) and the server-side package vandel_trace_file_io.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"
#include "transport/utl/utl_manager.h"

namespace facade {

namespace {

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

// The record as the transport takes it.
transport::UtlConnectInfo TransportRecord(const UtlConnectInfo& info) {
  transport::UtlConnectInfo record;
  record.handle = info.oracle_handle;
  record.major = static_cast<std::uint16_t>(info.release.major);
  record.minor = static_cast<std::uint16_t>(info.release.minor);
  record.user_name = info.user_name;
  record.password = info.password;
  record.connect = info.dsn;
  return record;
}

// Over the host's handle when it gave one, else by a logon of our own.
void ConnectManager(transport::CUtlManager& manager, const UtlConnectInfo& info) {
  manager.SetConnectInfo(TransportRecord(info));
  manager.Connect();
}

}  // namespace

int CPelicor::UtlValidation(std::uint64_t oracleHandle, std::uint16_t ver, const char* username,
                            const char* password, const char* dsn, const char* udump,
                            const char* sid, const char* PID, std::string* msg) {
  if (AnyMissing({username, password, dsn, udump, sid})) {
    return RefuseArguments("username/pwd/tns/udump/sid is empty or NULL!", msg);
  }
  if (AnyMissing({PID})) return RefuseArguments("PID is empty or NULL!", msg);
  return RunMethod(msg, [&] {
    transport::CUtlManager manager;
    // Chosen before connecting: a validation that fails later still names UTL.
    transport_kind_ = kUtl;
    ConnectManager(manager, MakeUtlConnectInfo(oracleHandle, ver, username, password, dsn));
    manager.ValidatePlsqlVersion();
    manager.CheckPackage();
    trace_file_name_ = manager.CreateUtlFileName(sid, PID);
  });
}

int CPelicor::ZantivUtlTrcStartUp(std::uint64_t oracleHandle, std::uint16_t ver,
                                  const char* username, const char* password, const char* dsn,
                                  const char* udump, const char* sid, const char* PID,
                                  const char* marker, std::string* outputXML, std::string* msg) {
  outputXML->clear();
  if (AnyMissing({username, password, udump})) {
    return RefuseArguments("username/password/udump can not be empty! Check registry setting.",
                           msg);
  }
  return RunMethod(msg, [&] {
    transport::CUtlManager manager;
    transport_kind_ = kUtl;
    utl_info_ = MakeUtlConnectInfo(oracleHandle, ver, username, password, dsn);
    ConnectManager(manager, utl_info_);
    manager.CheckPackage();
    trace_file_name_ = manager.CreateUtlFileName(Text(sid), Text(PID));
    *outputXML = XmlFileName(trace_file_name_);
    marker_ = Text(marker);
  });
}

void CPelicor::ParseSessionTraceOverUtl(parser::CTraceParser& parser) {
  transport::CUtlManager manager;
  ConnectManager(manager, utl_info_);
  parser.ParseDatabaseReader(manager, trace_file_name_, marker_);
}

}  // namespace facade
