// A trace read through V$DIAG_TRACE_FILE_CONTENTS, the way for servers without the package.
// (That the documents and the report read through it equal the local file's: db_commands_test.sh.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../support/raised.h"
#include "db/db_session.h"
#include "fake_oracle.h"
#include "transport/utl/diag_trace_reader.h"

namespace {

using pelicor_test::FakeOracle;
using pelicor_test::Raised;
using Strings = std::vector<std::string>;

class DiagReaderTest : public ::testing::Test {
 protected:
  DiagReaderTest() { server_.ClearTranscript(); }
  std::string ReadAll(const std::string& name, std::uint64_t offset = 0) {
    std::string text;
    if (!reader_.OpenLines(name, offset)) return "(none)";
    std::string_view line;
    while (reader_.ReadNextLine(&line)) text += line;
    reader_.CloseLines();
    return text;
  }

  FakeOracle server_;
  std::unique_ptr<db::DBSession> session_ =
      db::DBSession::Logon("scott", "tiger", "orcl", db::Release{19, 0});
  transport::DiagTraceReader reader_{*session_};
};

TEST_F(DiagReaderTest, SessionTraceFileFromVProcess) {
  server_.Add("tracefile=17,4711,/u01/app/oracle/diag/rdbms/orcl/orcl/trace/orcl_ora_4242.trc");
  EXPECT_EQ(reader_.SessionTraceFile(17, 4711), "orcl_ora_4242.trc");
  EXPECT_EQ(server_.Sent("prepare "),
            Strings{"select /* zantiv */ p.tracefile from v$process p, v$session s where "
                    "p.addr=s.paddr and s.sid = 17 and s.serial# = 4711"});
  EXPECT_EQ(Raised([&] { reader_.SessionTraceFile(18, 1); }),
            "DiagTraceReader|DiagTraceReader|SessionTraceFile|No trace file found for session "
            "18,1.");
}

// Every row is one line with one line end, from an offset of whole lines on.
TEST_F(DiagReaderTest, LinesInOrder) {
  pelicor_test::WriteWholeFile(server_.folder() / "a.trc", "one\n\ntwo\r\nthree");
  EXPECT_EQ(ReadAll("a.trc"), "one\n\ntwo\r\nthree\n");
  EXPECT_EQ(server_.Sent("prepare "),
            Strings{"select /* zantiv */ payload from v$diag_trace_file_contents where "
                    "trace_filename = :name order by line_number"});
  EXPECT_EQ(server_.Sent("bind "), Strings{":name 5 6"});
  EXPECT_EQ(server_.Sent("prefetch "), Strings{"1000"});
  EXPECT_EQ(ReadAll("a.trc", 4), "\ntwo\r\nthree\n");
  EXPECT_EQ(ReadAll("missing.trc"), "(none)");
}

}  // namespace
