// The Oracle access layer against the stand-in client library: loading it and Oracle errors,
// with every handle freed on every path. (Logon, attach and queries: utl_manager_test.cc and
// utl_flows_test.cc.)
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

}  // namespace
