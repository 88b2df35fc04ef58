#include "support/os/file_copy.h"

#include <gtest/gtest.h>

#include <fstream>

#include "scratch_dir.h"

namespace {

TEST(CopyFileOverwrite, ReplacesTheTargetButNeverEmptiesItsSource) {
  nfs_test::ScratchDir dir;
  const std::string a = dir.str() + "/a.trc", b = dir.str() + "/b.trc";
  std::ofstream(a) << "new\n";
  std::ofstream(b) << "an older and longer text\n";
  std::string error;
  ASSERT_TRUE(os::CopyFileOverwrite(a, b, &error)) << error;
  EXPECT_EQ(nfs_test::ReadWholeFile(b), "new\n");
  EXPECT_FALSE(os::CopyFileOverwrite(a, a, &error));
  EXPECT_EQ(nfs_test::ReadWholeFile(a), "new\n");
  EXPECT_FALSE(os::CopyFileOverwrite(dir.str() + "/gone.trc", a, &error));
  EXPECT_EQ(error, "No such file or directory");
}

}  // namespace
