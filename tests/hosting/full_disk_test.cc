// The parse methods through the C ABI on a full disk: result 1 with a message naming the
// document, and the document of an earlier call stays as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "../support/file_size_limit.h"
#include "../support/scratch.h"
#include "pelicor/pelicor.hpp"

namespace {

namespace fs = std::filesystem;

class CurrentDirectory {
 public:
  explicit CurrentDirectory(const fs::path& dir) { fs::current_path(dir); }
  ~CurrentDirectory() { fs::current_path(previous_); }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;

 private:
  fs::path previous_ = fs::current_path();
};

TEST(FullDisk, ParseMethodsAnswerOneAndKeepTheEarlierDocument) {
  const pelicor_test::ScratchDir dir;
  const CurrentDirectory here(dir.path());
  fs::copy_file(PELICOR_FIXTURE_TRACE, dir.path() / "orcl_ora_4242.trc");
  pelicor_test::WriteWholeFile(dir.path() / "orcl_ora_4242.xml", "earlier");
  pelicorxx::Pelicor service;
  std::string msg;
  ASSERT_EQ(service.SetWorkingDir(dir.str().c_str(), &msg), 0);
  const std::string failed = "Trace parser failed to write the output XML file ";
  const std::string reason = ": File too large";
  std::string xml;
  {
    const pelicor_test::FileSizeLimit full(256);
    EXPECT_EQ(service.ParseFile("orcl_ora_4242.trc", 0, 0, 0, &xml, &msg), 1);
    EXPECT_EQ(msg, failed + dir.File("orcl_ora_4242.xml") + reason);
    EXPECT_EQ(service.ParseFile("orcl_ora_4242.trc", 0, 0, 1, &xml, &msg), 1);
    EXPECT_EQ(msg, failed + "orcl_ora_4242.xml" + reason);
    EXPECT_EQ(service.ParseFileEx("orcl_ora_4242.trc", 0, 0, &xml, &msg), 1);
    EXPECT_EQ(msg, failed + dir.File("orcl_ora_4242.xml") + reason);
  }
  EXPECT_EQ(pelicor_test::ReadWholeFile(dir.path() / "orcl_ora_4242.xml"), "earlier");
  EXPECT_EQ(pelicor_test::FileNames(dir.path()),
            (std::vector<std::string>{"orcl_ora_4242.trc", "orcl_ora_4242.xml"}));
}

}  // namespace
