// The candidate trace-file names of the UTL transport, by platform pattern.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "transport/utl/utl_manager.h"

namespace {

struct NameRow {
  int code;
  const char* pid;
  const char* instance;
  int flag;
  const char* name;
};

TEST(UtlTraceNames, PlatformPatterns) {
  const std::vector<NameRow> rows = {
      {1, "42", "orcl", 1, "ora00042.trc"},
      {1, "123456", "orcl", 1, "ora123456.trc"},
      {1, "-42", "orcl", 1, "ora-0042.trc"},
      {1, "42", "orcl", 0, "ora_42.trc"},
      {2, "4242", "orcl", 1, "orcl_ora4242.trc"},
      {2, "4242", "orcl", 0, "orcl_ora_4242.trc"},
      {3, "4242", "orcl", 1, "ora_orcl_4242.trc"},
      {3, "4242", "orcl", 2, "ora_orcl_4242.trc"},
      {4, "1234", "orcl", 0, "ORCL_ora_1234.trc"},
      {4, "1234", "ORCL", 0, "orcl_ora_1234.trc"},
      {4, "1234", "Orcl", 1, "orcl_ora1234.trc"},
      {4, "1234", "1db", 1, "1DB_ora1234.trc"},
      {5, "1234", "orcl", 0, "ora_1234_ORCL.trc"},
      {7, "0042", "orcl", 0, "orcl_ora_42.trc"},
      {7, "4242", "orcl", 1, "orcl_ora_4242.trc"},
      {0, "4242", "orcl", 0, ""},
      {8, "4242", "orcl", 0, ""},
  };
  transport::CUtlManager manager;
  for (const NameRow& row : rows) {
    EXPECT_EQ(manager.BuildTraceName(row.code, row.pid, row.instance, row.flag), row.name)
        << "code " << row.code << " pid " << row.pid << " flag " << row.flag;
  }
}

// Code 6 prints where the process id's text lies, never the process id.
TEST(UtlTraceNames, CodeSixNeverNamesTheProcess) {
  transport::CUtlManager manager;
  const std::string name = manager.BuildTraceName(6, "4242", "orcl", 0);
  EXPECT_TRUE(std::regex_match(name, std::regex("-?[0-9]+\\.trc"))) << name;
  EXPECT_NE(name, "4242.trc");
}

TEST(UtlTraceNames, ServiceProcessPatterns) {
  transport::CUtlManager manager;
  EXPECT_EQ(manager.BuildServiceTraceName(1, "A", "B", "C"), "C_A_fg_srv_B.trc");
  EXPECT_EQ(manager.BuildServiceTraceName(2, "A", "B", "C"), "C_A_bg_srv_B.trc");
  EXPECT_EQ(manager.BuildServiceTraceName(3, "A", "B", "C"), "C_A_fg_oracle_B.trc");
  EXPECT_EQ(manager.BuildServiceTraceName(4, "A", "B", "C"), "C_A_bg_oracle_B.trc");
  EXPECT_EQ(manager.BuildServiceTraceName(5, "A", "B", "C"), "");
}

}  // namespace
