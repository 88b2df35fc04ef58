#include "support/trace_naming.h"

#include <gtest/gtest.h>

#include <string>

#include "raised.h"

namespace {

using pelicor_test::Raised;

TEST(ConvertFilename, OverwritesTheThreeCharactersAfterTheFirstDot) {
  // clang-format off
  const char* cases[][2] = {
      {"ora_00123.trc", "ora_00123.xml"}, {"ORA_1.TRC", "ORA_1.xml"}, {"a.trc.bak", "a.xml.bak"},
      {"my.db_ora_1.trc", "my.xmlora_1.trc"}, {".trc", ".xml"}, {"x.Trc.trc", "x.xml.trc"},
      {"C:\\udump\\orcl_ora_42.trc", "C:\\udump\\orcl_ora_42.xml"}};
  // clang-format on
  for (const auto& c : cases) {
    std::string name = c[0];
    support::ConvertFilename(name);
    EXPECT_EQ(name, c[1]) << c[0];
  }
  for (const char* in : {"trace.log", "ora_1.Trc", "", "ora_1trc"}) {
    std::string name = in;
    EXPECT_EQ(Raised([&] { support::ConvertFilename(name); }),
              "Pelicor|ConvertFilename|ConvertFilename|Filename does not contain '.trc' !");
    EXPECT_EQ(name, in);
  }
}

TEST(ConvertPID2TraceFilename, PadsToFiveAndRefusesLongerPids) {
  const char* cases[][2] = {{"123", "00123"}, {"12345", "12345"}, {"", "00000"}, {"12a", "0012a"}};
  for (const auto& c : cases) EXPECT_EQ(support::ConvertPID2TraceFilename(c[0]), c[1]) << c[0];
  EXPECT_EQ(Raised([] { support::ConvertPID2TraceFilename("123456"); }),
            "Pelicor|ConvertPID2TraceFilename|ConvertPID2TraceFilename|The digits of PID is more "
            "than 5, which is not supported by this version!");
}

}  // namespace
