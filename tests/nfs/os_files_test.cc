#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "scratch_dir.h"
#include "support/os/dir_search.h"
#include "support/os/file_copy.h"

namespace {

namespace fs = std::filesystem;
using nfs_test::ScratchDir;

TEST(FindFiles, KeepsTheFullSizeAndListsDotEntriesLikeWindows) {
  ScratchDir dir;
  dir.AddFile("big.trc", (5ull << 30) + 3);
  const os::DirSearchResult all = os::FindFiles(dir.str() + "/*");
  ASSERT_TRUE(all.started) << all.error;
  ASSERT_EQ(all.entries.size(), 3u);
  EXPECT_EQ(all.entries[0].name, ".");
  EXPECT_EQ(all.entries[0].size, 0u);  // a directory, as Windows reports it
  EXPECT_EQ(all.entries[1].name, "..");
  EXPECT_EQ(all.entries[2].size, (5ull << 30) + 3);
  EXPECT_EQ(all.entries[2].SizeLow32(), (1u << 30) + 3);
}

TEST(CopyFileOverwrite, ReplacesTheTargetAndRefusesToCopyOntoItself) {
  ScratchDir dir;
  std::ofstream(dir.path() / "a.trc") << "new\n";
  std::ofstream(dir.path() / "b.trc") << "an older and longer text\n";
  std::string error;
  const std::string a = (dir.path() / "a.trc").string();
  ASSERT_TRUE(os::CopyFileOverwrite(a, (dir.path() / "b.trc").string(), &error)) << error;
  EXPECT_EQ(nfs_test::ReadWholeFile(dir.path() / "b.trc"), "new\n");

  EXPECT_FALSE(os::CopyFileOverwrite(a, a, &error));
  EXPECT_EQ(nfs_test::ReadWholeFile(a), "new\n");
  EXPECT_FALSE(os::CopyFileOverwrite((dir.path() / "gone.trc").string(), a, &error));
  EXPECT_EQ(error, "No such file or directory");
}

}  // namespace
