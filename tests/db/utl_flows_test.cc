// The UTL methods of the service object against the stand-in server: validation and start-up
// in both connection forms, every failure as the host sees it, and the statement document of
// what the session wrote after its marker.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../facade/facade_fixture.h"
#include "fake_oracle.h"

namespace {

using facade_test::AppendFile;
using facade_test::FacadeTest;
using pelicor_test::FakeOracle;
using pelicor_test::FixtureTrace;
using pelicor_test::kServerDumpDir;
using pelicor_test::ReadWholeFile;
using Strings = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr const char* kMarker = "pelicor-mark-1";

// What the host writes into its session's trace when it starts its work: a statement whose
// text holds the marker.
std::string MarkerStatement() {
  return "=====================\n"
         "PARSING IN CURSOR #3 len=34 dep=0 uid=59 oct=3 lid=59 tim=1083929217690000 "
         "hv=3342211 ad='6b1b0a10'\n"
         "select 'pelicor-mark-1' from dual\n"
         "END OF STMT\n"
         "PARSE #3:c=0,e=52,p=0,cr=0,cu=0,mis=1,r=0,dep=0,og=4,tim=1083929217689990\n";
}

class UtlFlowsTest : public FacadeTest {
 protected:
  UtlFlowsTest() { pelicor_test::WriteWholeFile(trace(), FixtureTrace()); }
  fs::path trace() const { return server_.folder() / "orcl_ora_4242.trc"; }
  int Validate(std::uint64_t handle = 0, std::uint16_t ver = 92, const char* password = "tiger") {
    return service_.UtlValidation(handle, ver, "scott", password, "orcl", kServerDumpDir, "17,4711",
                                  "", &msg_);
  }

  FakeOracle server_;
};

// The logon form: the whole conversation, in order.
TEST_F(UtlFlowsTest, ValidationByLogon) {
  ASSERT_EQ(Validate(), 0) << msg_;
  EXPECT_EQ(msg_, "OK");
  EXPECT_EQ(service_.TraceFileName(), "orcl_ora_4242.trc");
  EXPECT_EQ(service_.Transport(), facade::kUtl);
  EXPECT_EQ(server_.Sent("logon "), Strings{"scott/tiger@orcl"});
  const std::string validate = "BEGIN BEGIN :result := vandel_trace_file_io.validate_file( '";
  const std::string dir = std::string(kServerDumpDir) + "', '";
  EXPECT_EQ(
      server_.Sent("prepare "),
      (Strings{
          "select /* zantiv */ banner from sys.v_$version where upper(banner) like '%PL/SQL%%.%'",
          validate + "test', '*'); END; END;",
          "select /* zantiv */ upper(banner) from sys.v_$version where upper(banner) like 'TNS%'",
          "select /* zantiv */ p.spid from sys.v_$process p, sys.v_$session s where "
          "p.addr=s.paddr and s.SID = 17 and s.SERIAL# = 4711",
          "select /* zantiv */ NVL(LOWER(name),'NONE') from sys.v_$database",
          "select /* zantiv */ NVL(value,'NONE') from sys.v_$parameter where "
          "name='user_dump_dest'",
          validate + dir + "ora_4242.trc'); END; END;",
          validate + dir + "orcl_ora_4242.trc'); END; END;"}));
  EXPECT_EQ(server_.Sent("logoff").size(), 1u);
}

struct FailureRow {
  const char* name;
  const char* key;  // the scenario line that makes it fail
  const char* value;
  std::uint16_t ver;
  const char* message;
};

// Each failure ends in its message; the validation has chosen UTL all the same.
TEST_F(UtlFlowsTest, ValidationFailures) {
  const std::vector<FailureRow> rows = {
      {"old PL/SQL", "plsql_banner", "PL/SQL Release 2.2.0.0.0 - Production", 92,
       "UTL is not supported by this version of PL/SQL!"},
      {"no package", "package", "missing", 92,
       "UTL did not find a valid Vandel file IO package!  Or the package is not accessible to "
       "the user."},
      {"no file", "instance", "prod", 92,
       "UTL did not find trace file for the session! Check if user_dump_dest is in "
       "utl_file_dir."},
      {"no session", "spid", "99,1,4242", 92, "UTL did not retrieve session process ID!"},
      {"wrong account", "password", "lion", 92,
       "ORA-01017: invalid username/password; logon denied\n"},
      {"release 7", "instance", "orcl", 72,
       "Oracle release 7.2 is not supported: the version 8 call interface (Oracle 8.0 or "
       "later) is needed."},
  };
  for (const FailureRow& row : rows) {
    SCOPED_TRACE(row.name);
    facade::CPelicor service;
    server_.Set(row.key, row.value);
    EXPECT_EQ(service.UtlValidation(0, row.ver, "scott", "tiger", "orcl", kServerDumpDir, "17,4711",
                                    "", &msg_),
              1);
    EXPECT_EQ(msg_, row.message);
    EXPECT_EQ(service.Transport(), facade::kUtl);
    server_.Restore();
  }
}

// The host's own connection: the start-up names the file, keeps the marker, and the statement
// document covers only what follows the marker line.
TEST_F(UtlFlowsTest, StartUpOverTheHostsHandleThenStatementDocument) {
  const std::uint64_t handle = server_.HostHandle();
  server_.ClearTranscript();
  ASSERT_EQ(service_.ZantivUtlTrcStartUp(handle, 92, "scott", "tiger", "orcl", kServerDumpDir,
                                         "17,4711", "4242", kMarker, &out_, &msg_),
            0)
      << msg_;
  EXPECT_EQ(out_, "orcl_ora_4242.xml");
  EXPECT_EQ(service_.TraceFileName(), "orcl_ora_4242.trc");
  EXPECT_EQ(service_.Marker(), kMarker);
  EXPECT_EQ(service_.Transport(), facade::kUtl);
  // With a process id given, no session lookup; no PL/SQL version check in a start-up.
  for (const std::string& sql : server_.Sent("prepare ")) {
    EXPECT_EQ(sql.find("v_$process"), std::string::npos);
    EXPECT_EQ(sql.find("PL/SQL"), std::string::npos);
  }

  // The host has not run its marker statement yet.
  EXPECT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 1);
  EXPECT_EQ(msg_, "UTL did not find the unique TRACE ID!");

  AppendFile(trace(), MarkerStatement() + FixtureTrace());
  server_.ClearTranscript();
  ASSERT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 0) << msg_;
  EXPECT_EQ(ReadWholeFile(root() / "orcl_ora_4242.xml"),
            ReadWholeFile(fs::path(PELICOR_FACADE_DATA) / "orcl_ora_4242.update.xml"));
  EXPECT_EQ(server_.Sent("logon ").size(), 0u);
  EXPECT_EQ(server_.Sent("logoff").size(), 0u);  // the host's connection stays open
  EXPECT_EQ(server_.Sent("attrget ").size(), 1u);

  // Before the marker the session ran the same update: only one of them may be counted, and
  // the marker statement itself is not among the statements.
  EXPECT_EQ(service_.ZantivGetTraceInfo("pelicor-mark", "9.2.0.4.0", &msg_), 1);
}

TEST_F(UtlFlowsTest, StartUpByLogonReadsThroughItsOwnSession) {
  ASSERT_EQ(service_.ZantivUtlTrcStartUp(0, 92, "scott", "tiger", "orcl", kServerDumpDir, "",
                                         "4242", kMarker, &out_, &msg_),
            0)
      << msg_;
  AppendFile(trace(), MarkerStatement() + FixtureTrace());
  ASSERT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 0) << msg_;
  EXPECT_EQ(server_.Sent("logon "), (Strings{"scott/tiger@orcl", "scott/tiger@orcl"}));
  EXPECT_EQ(server_.Sent("logoff").size(), 2u);
  // The marker on two lines: the package cannot tell where to start.
  AppendFile(trace(), MarkerStatement());
  EXPECT_EQ(service_.ZantivGetTraceInfo("update emp", "9.2.0.4.0", &msg_), 1);
  EXPECT_EQ(msg_, "UTL did not find the unique TRACE ID!");
}

}  // namespace
