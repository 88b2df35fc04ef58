#include "support/trace_naming.h"

#include <gtest/gtest.h>

#include <string>

#include "support/exceptions.h"

namespace {

TEST(ConvertFilename, OverwritesTheThreeCharactersAfterTheFirstDot) {
  const struct {
    const char* in;
    const char* out;
  } cases[] = {
      {"ora_00123.trc", "ora_00123.xml"},
      {"ORA_1.TRC", "ORA_1.xml"},
      {"a.trc.bak", "a.xml.bak"},
      {"my.db_ora_1.trc", "my.xmlora_1.trc"},
      {".trc", ".xml"},
      {"C:\\udump\\orcl_ora_42.trc", "C:\\udump\\orcl_ora_42.xml"},
      {"x.Trc.trc", "x.xml.trc"},
  };
  for (const auto& c : cases) {
    std::string name = c.in;
    support::ConvertFilename(name);
    EXPECT_EQ(name, c.out) << c.in;
  }
}

TEST(ConvertFilename, RefusesNamesWithoutTrcAndLeavesThemAlone) {
  for (const char* in : {"trace.log", "ora_1.Trc", "", "ora_1trc"}) {
    std::string name = in;
    try {
      support::ConvertFilename(name);
      ADD_FAILURE() << in;
    } catch (const exceptions::ExceptionBase& e) {
      EXPECT_EQ(e.File() + "|" + e.ClassName() + "|" + e.Method() + "|" + e.Message(),
                "Pelicor|ConvertFilename|ConvertFilename|Filename does not contain '.trc' !");
    }
    EXPECT_EQ(name, in);
  }
}

TEST(ConvertPID2TraceFilename, PadsToFiveAndRefusesLongerPids) {
  const struct {
    const char* pid;
    const char* out;
  } cases[] = {
      {"123", "00123"}, {"12345", "12345"}, {"", "00000"}, {"12a", "0012a"}, {"7", "00007"}};
  for (const auto& c : cases) EXPECT_EQ(support::ConvertPID2TraceFilename(c.pid), c.out) << c.pid;
  try {
    support::ConvertPID2TraceFilename("123456");
    ADD_FAILURE();
  } catch (const exceptions::ExceptionBase& e) {
    EXPECT_EQ(e.File() + "|" + e.ClassName() + "|" + e.Method() + "|" + e.Message(),
              "Pelicor|ConvertPID2TraceFilename|ConvertPID2TraceFilename|The digits of PID is more "
              "than 5, which is not supported by this version!");
  }
}

}  // namespace
