// The Oracle access layer against the stand-in client library: loading it, both ways to a
// session, queries, Oracle errors, and every handle freed on every path.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "../support/raised.h"
#include "db/db_session.h"
#include "db/query.h"
#include "fake_oracle.h"

namespace {

using pelicor_test::FakeOracle;
using pelicor_test::Raised;

constexpr db::Release k92{9, 2};
constexpr const char* kInstanceSql =
    "select /* zantiv */ NVL(LOWER(name),'NONE') from sys.v_$database";

class DbSessionTest : public ::testing::Test {
 protected:
  FakeOracle server_;
};

TEST_F(DbSessionTest, LogonQueriesAndLogsOff) {
  {
    auto session = db::DBSession::Logon("scott", "tiger", "orcl", k92);
    EXPECT_EQ(session->QueryText(kInstanceSql), "orcl");
    server_.Set("instance", "");
    EXPECT_EQ(session->QueryText(kInstanceSql), std::nullopt);  // no row
  }
  EXPECT_EQ(server_.Sent("logon "), std::vector<std::string>{"scott/tiger@orcl"});
  EXPECT_EQ(server_.Sent("prepare "), (std::vector<std::string>{kInstanceSql, kInstanceSql}));
  EXPECT_EQ(server_.Sent("logoff").size(), 1u);
}

// The host's connection is used, not logged off, and its environment gives our handles.
TEST_F(DbSessionTest, AttachUsesTheHostsConnection) {
  const std::uint64_t handle = server_.HostHandle();
  server_.ClearTranscript();
  {
    auto session = db::DBSession::Attach(handle, k92);
    EXPECT_EQ(session->QueryText("select host_name from v$instance"), "dbhost01");
  }
  EXPECT_EQ(server_.Sent("attrget ").size(), 1u);
  EXPECT_EQ(server_.Sent("logon ").size(), 0u);
  EXPECT_EQ(server_.Sent("logoff").size(), 0u);
}

// An Oracle error carries its text unchanged, its code and category 3; what failed half-way is
// released.
TEST_F(DbSessionTest, OracleErrorsCarryTextAndCode) {
  const auto code_of = [](auto&& call) -> std::string {
    try {
      call();
    } catch (const exceptions::OracleException& e) {
      return std::to_string(e.ErrorCode()) + "/" + std::to_string(e.Category()) + "|" + e.Method() +
             "|" + e.Message();
    }
    return "";
  };
  EXPECT_EQ(code_of([] { db::DBSession::Logon("scott", "lion", "orcl", k92); }),
            "1017/3|OCILogon|ORA-01017: invalid username/password; logon denied\n");
  EXPECT_EQ(code_of([] { db::DBSession::Logon("scott", "tiger", "nowhere", k92); }),
            "12154/3|OCILogon|ORA-12154: TNS:could not resolve the connect identifier specified\n");
  auto session = db::DBSession::Logon("scott", "tiger", "orcl", k92);
  EXPECT_EQ(code_of([&] { session->QueryText("select 1 from dual"); }),
            "942/3|OCIStmtExecute|ORA-00942: table or view does not exist\n");
  server_.Add("fail=OCIStmtPrepare|3113|ORA-03113: end-of-file on communication channel");
  EXPECT_EQ(code_of([&] { session->QueryText(kInstanceSql); }),
            "3113/3|OCIStmtPrepare|ORA-03113: end-of-file on communication channel");
}

TEST_F(DbSessionTest, PlsqlWithNamedBinds) {
  auto session = db::DBSession::Logon("scott", "tiger", "orcl", k92);
  auto query = session->NewQuery();
  query->Prepare(
      "BEGIN BEGIN :result := vandel_trace_file_io.validate_file( 'test', '*'); END; END;");
  int result = -1;
  query->BindInteger(":result", &result);
  EXPECT_TRUE(query->Execute());
  EXPECT_EQ(result, 0);
  EXPECT_EQ(server_.Sent("bind "), std::vector<std::string>{":result 3 4"});
}

TEST_F(DbSessionTest, ClientLibraryFailures) {
  setenv("PELICOR_OCI_LIBRARY", "/nowhere/libclntsh.so", 1);
  const std::string missing = Raised([] { db::DBSession::Logon("scott", "tiger", "orcl", k92); });
  EXPECT_EQ(missing.rfind("OciLibrary|db::OciLibrary|Load|Could not load the Oracle client library "
                          "/nowhere/libclntsh.so: /nowhere/libclntsh.so: cannot open shared object",
                          0),
            0u)
      << missing;

  setenv("PELICOR_OCI_LIBRARY", PELICOR_FAKE_OCI_NOBIND, 1);
  try {
    db::DBSession::Logon("scott", "tiger", "orcl", k92);
    ADD_FAILURE() << "a library without OCIBindByName was taken";
  } catch (const exceptions::RuntimeException& e) {
    EXPECT_EQ(e.Message(), "\n\nCould not load Oracle OCI function: OCIBindByName");
  }

  setenv("PELICOR_OCI_LIBRARY", PELICOR_FAKE_OCI, 1);
  server_.Add("fail=OCIEnvCreate|0|");
  EXPECT_EQ(Raised([] { db::DBSession::Logon("scott", "tiger", "orcl", k92); }),
            "DBSession|db::DBSession|OCIEnvCreate|The Oracle client library could not create an "
            "OCI environment.");
}

// Release 7's call interface is gone from every client library: refused before loading one.
TEST_F(DbSessionTest, ReleaseSevenIsRefused) {
  EXPECT_EQ(Raised([] {
              db::DBSession::Attach(1, db::Release{7, 3});
            }),
            "DBSession|db::DBSession|DBSession|Oracle release 7.3 is not supported: the version 8 "
            "call interface (Oracle 8.0 or later) is needed.");
  EXPECT_EQ(server_.Sent("").size(), 0u);
}

}  // namespace
