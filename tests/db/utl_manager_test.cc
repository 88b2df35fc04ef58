// CUtlManager against the stand-in server: the SQL it sends and the messages of each step, the
// platform's names walked with the package, and the trace read line by line.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../support/raised.h"
#include "fake_oracle.h"
#include "transport/utl/utl_manager.h"

namespace {

using pelicor_test::FakeOracle;
using pelicor_test::Raised;
using Strings = std::vector<std::string>;

class UtlManagerTest : public ::testing::Test {
 protected:
  UtlManagerTest() {
    transport::UtlConnectInfo info;
    info.major = 9;
    info.minor = 2;
    info.user_name = "scott";
    info.password = "tiger";
    info.connect = "orcl";
    manager_.SetConnectInfo(info);
    manager_.Connect();
    server_.ClearTranscript();
  }
  void AddTrace(const std::string& name, const std::string& text) {
    pelicor_test::WriteWholeFile(server_.folder() / name, text);
  }
  // The names the package was asked to validate, in order.
  Strings Validated() const {
    Strings names;
    const std::string head = "BEGIN BEGIN :result := vandel_trace_file_io.validate_file( '";
    for (const std::string& sql : server_.Sent("prepare ")) {
      if (sql.rfind(head, 0) != 0) continue;
      const std::size_t start = sql.find("', '") + 4;
      names.push_back(sql.substr(start, sql.find('\'', start) - start));
    }
    return names;
  }
  std::string ReadAll() {
    std::string text;
    while (const char* line = manager_.ReadLine()) text += line;
    return text;
  }

  FakeOracle server_;  // outlives the manager
  transport::CUtlManager manager_;
};

struct QueryRow {
  const char* key;  // the scenario's answer that the query reads
  std::function<std::string(transport::CUtlManager&)> call;
  const char* value;
  const char* message;
};

// One statement each (the stand-in answers only the exact texts it knows), and the message of
// each when the answer has no row.
TEST_F(UtlManagerTest, EachQueryReadsItsAnswerOrRaisesItsMessage) {
  const auto numbers = [](std::array<int, 5> v) {
    return std::to_string(v[0]) + "." + std::to_string(v[1]) + "." + std::to_string(v[2]) + "." +
           std::to_string(v[3]) + "." + std::to_string(v[4]);
  };
  const std::vector<QueryRow> rows = {
      {"user_dump_dest", [](auto& m) { return m.DumpDirectory(); }, pelicor_test::kServerDumpDir,
       "UTL did not retrieve user_dump_dest!"},
      {"tns_banner", [](auto& m) { return std::to_string(m.OsType()); }, "0",
       "UTL did not retrieve Oracle OS type!"},
      {"os_version", [&](auto& m) { return numbers(m.OsVersion()); }, "9.2.0.4.0",
       "UTL did not retrieve Oracle OS version!"},
      {"plsql_banner", [&](auto& m) { return numbers(m.PlsqlVersion()); }, "9.2.0.4.0",
       "UTL did not retrieve Oracle PL/SQL version!"},
      {"instance", [](auto& m) { return m.InstanceName(); }, "orcl",
       "UTL did not retrieve Oracle instance name!"},
      {"spid", [](auto& m) { return m.SessionProcessId(17, 4711); }, "4242",
       "UTL did not retrieve session process ID!"},
      {"host_name", [](auto& m) { return m.HostName(); }, "dbhost01",
       "UTL did not retrieve Oracle server name!"},
  };
  for (const QueryRow& row : rows) {
    SCOPED_TRACE(row.key);
    {
      transport::CUtlManager present;
      present.Connect(server_.HostHandle(), 9, 2);
      server_.ClearTranscript();
      EXPECT_EQ(row.call(present), row.value);
      EXPECT_EQ(server_.Sent("prepare ").size(), 1u);
    }
    server_.Set(row.key, "");
    transport::CUtlManager absent;
    absent.Connect(server_.HostHandle(), 9, 2);
    EXPECT_EQ(Raised([&] { row.call(absent); }),
              std::string("UtlManager|CUtlManager|GetOracleProcerssID|") + row.message);
    server_.Restore();
  }
}

// The platform from the TNS banner; PL/SQL releases before 2.3 are refused.
TEST_F(UtlManagerTest, OsTypeAndPlsqlReleaseFromTheBanners) {
  const std::vector<std::pair<const char*, int>> banners = {
      {"TNS for 32-bit Windows: Version 9.2.0.1.0 - Production", transport::kUtlWindows},
      {"TNS for OpenVMS: Version 9.2.0.1.0 - Production", transport::kUtlVms},
      {"TNS for Novell NetWare: Version 8.1.7.0.0 - Production", transport::kUtlNetware},
      {"TNS for NetWare and Windows: Version 8.1.7.0.0", transport::kUtlWindows},
      {"TNS for Solaris: Version 9.2.0.4.0 - Production", transport::kUtlOtherOs},
  };
  for (const auto& [banner, type] : banners) {
    server_.Set("tns_banner", banner);
    EXPECT_EQ(manager_.OsType(), type) << banner;
  }
  const std::vector<std::pair<const char*, bool>> plsql_banners = {
      {"PL/SQL Release 2.2.0.0.0 - Production", false},
      {"PL/SQL Release 2.3.4.0.0 - Production", true},
      {"PL/SQL Release 3.0.0.0.0 - Production", true},
      {"PL/SQL Release 1.9.9.9.9 - Production", false},
      {"PL/SQL Release 8.1.7.4.0 - Production", true},
      {"PL/SQL Release 10.2.0.4.0 - Production", true},
      {"PL/SQL Version 9.2", false},  // not the form we read: all zero
  };
  for (const auto& [banner, passes] : plsql_banners) {
    server_.Set("plsql_banner", banner);
    EXPECT_EQ(Raised([&] { manager_.ValidatePlsqlVersion(); }),
              passes ? ""
                     : "UtlManager|CUtlManager|ValidatePlsqlVersion|UTL is not supported by this "
                       "version of PL/SQL!")
        << banner;
  }
}

TEST_F(UtlManagerTest, ConnectNeedsAHandleOrAUserName) {
  transport::CUtlManager manager;
  transport::UtlConnectInfo info;
  info.major = 9;
  info.password = "tiger";
  info.connect = "orcl";
  manager.SetConnectInfo(info);
  EXPECT_EQ(Raised([&] { manager.Connect(); }),
            "UtlManager|CUtlManager|CUtlManager|UTL failed to connect to Oracle using OCI dll!");
  EXPECT_EQ(Raised([&] { manager.InstanceName(); }),
            "UtlManager|CUtlManager|CUtlManager|UTL failed to connect to Oracle using OCI dll!");
  EXPECT_EQ(server_.Sent("").size(), 0u);
}

// The package is probed with ('test', '*'); whatever goes wrong there reads the same.
TEST_F(UtlManagerTest, CheckPackage) {
  EXPECT_EQ(Raised([&] { manager_.CheckPackage(); }), "");
  EXPECT_EQ(server_.Sent("prepare "),
            Strings{"BEGIN BEGIN :result := vandel_trace_file_io.validate_file( 'test', '*'); END; "
                    "END;"});
  const std::string refusal =
      "UtlManager|CUtlManager|GetOracleProcerssID|UTL did not find a valid Vandel file IO "
      "package!  Or the package is not accessible to the user.";
  server_.Set("package", "missing");
  EXPECT_EQ(Raised([&] { manager_.CheckPackage(); }), refusal);
  transport::CUtlManager unconnected;
  EXPECT_EQ(Raised([&] { unconnected.CheckPackage(); }), refusal);
}

// Linux: codes 1 to 7 with flag 0, the first name the package accepts wins.
TEST_F(UtlManagerTest, CreateUtlFileNameWalksThePlatformsNames) {
  AddTrace("orcl_ora_4242.trc", "x\n");
  EXPECT_EQ(manager_.CreateUtlFileName("", "4242"), "orcl_ora_4242.trc");
  EXPECT_EQ(Validated(), (Strings{"ora_4242.trc", "orcl_ora_4242.trc"}));

  // The process looked up by SID and SERIAL#; leading zeros only code 7 drops.
  server_.Add("spid=18,1,0042");
  AddTrace("orcl_ora_42.trc", "x\n");
  server_.ClearTranscript();
  EXPECT_EQ(manager_.CreateUtlFileName("18,1", ""), "orcl_ora_42.trc");
  const Strings walked = Validated();
  ASSERT_EQ(walked.size(), 7u);
  EXPECT_EQ(walked[4], "ora_0042_ORCL.trc");
  EXPECT_EQ(walked[6], "orcl_ora_42.trc");

  server_.ClearTranscript();
  EXPECT_EQ(Raised([&] { manager_.CreateUtlFileName("", "777"); }),
            "UtlManager|CUtlManager|CreateUtlFileName|UTL did not find trace file for the "
            "session! Check if user_dump_dest is in utl_file_dir.");
  EXPECT_EQ(Validated().size(), 7u);
  EXPECT_EQ(Raised([&] { manager_.CreateUtlFileName("19,2", ""); }),
            "UtlManager|CUtlManager|GetOracleProcerssID|UTL did not retrieve session process ID!");
}

TEST_F(UtlManagerTest, CreateUtlFileNameOnWindowsAndVms) {
  server_.Set("tns_banner", "TNS for 32-bit Windows: Version 9.2.0.1.0 - Production");
  AddTrace("ora04242.trc", "x\n");
  EXPECT_EQ(manager_.CreateUtlFileName("17,4711", ""), "ora04242.trc");
  EXPECT_EQ(Validated(), Strings{"ora04242.trc"});

  server_.Set("tns_banner", "TNS for OpenVMS: Version 9.2.0.1.0 - Production");
  AddTrace("dbhost01_orcl_bg_srv_4242.trc", "x\n");
  server_.ClearTranscript();
  EXPECT_EQ(manager_.CreateUtlFileName("", "4242"), "dbhost01_orcl_bg_srv_4242.trc");
  EXPECT_EQ(Validated(),
            (Strings{"dbhost01_orcl_fg_srv_4242.trc", "dbhost01_orcl_bg_srv_4242.trc"}));
  server_.Set("host_name", "");
  EXPECT_EQ(Raised([&] { manager_.CreateUtlFileName("", "4242"); }),
            "UtlManager|CUtlManager|GetOracleProcerssID|UTL did not retrieve Oracle server name!");
}

// Reading starts after the one line that holds the trace id; each line ends in one line feed.
TEST_F(UtlManagerTest, StreamReadsAfterTheTraceId) {
  const std::string long_line(1500, 'x');
  AddTrace("orcl_ora_4242.trc", "before\nmark-1 here\nfirst\r\n\n" + long_line + "\nlast");
  manager_.OpenDataStream("orcl_ora_4242.trc", "mark-1");
  EXPECT_EQ(ReadAll(), "first\r\n\n" + long_line.substr(0, 1023) + "\nlast\n");
  EXPECT_EQ(manager_.ReadLine(), nullptr);
  EXPECT_EQ(server_.Sent("prepare "),
            (Strings{"select /* zantiv */ NVL(value,'NONE') from sys.v_$parameter where "
                     "name='user_dump_dest'",
                     "BEGIN BEGIN :result := vandel_trace_file_io.open_file( '" +
                         std::string(pelicor_test::kServerDumpDir) +
                         "', 'orcl_ora_4242.trc', 'R', 'mark-1'); END; END;",
                     "BEGIN BEGIN :result := vandel_trace_file_io.read_line(:buf, :len); END; "
                     "END;"}));
  EXPECT_EQ(server_.Sent("bind "),
            (Strings{":result 3 4", ":result 3 4", ":len 3 4", ":buf 5 1024"}));

  // The statement is kept for the next file and dropped by CloseDataStream.
  manager_.OpenDataStream("orcl_ora_4242.trc", "");
  EXPECT_EQ(std::string(manager_.ReadLine()), "before\n");
  manager_.CloseDataStream();
  EXPECT_EQ(manager_.ReadLine(), nullptr);

  AddTrace("twice.trc", "mark-1\nmark-1\n");
  EXPECT_EQ(Raised([&] { manager_.OpenDataStream("twice.trc", "mark-1"); }),
            "UtlManager|CUtlManager|OpenDataStream|UTL did not find the unique TRACE ID!");
}

// An Oracle error in the middle of reading reaches the caller with its text.
TEST_F(UtlManagerTest, ReadFailureIsAnOracleError) {
  AddTrace("orcl_ora_4242.trc", "a\nb\n");
  manager_.OpenDataStream("orcl_ora_4242.trc", "");
  EXPECT_EQ(std::string(manager_.ReadLine()), "a\n");
  server_.Add("fail_sql=read_line|29284|ORA-29284: file read error");
  EXPECT_EQ(Raised([&] { manager_.ReadLine(); }),
            "DBSession|db::DBSession|OCIStmtExecute|ORA-29284: file read error");
}

}  // namespace
