#include "support/os/file_copy.h"

#include <gtest/gtest.h>

#include "../support/platform.h"
#include "scratch_dir.h"

namespace {

TEST(CopyFileOverwrite, ReplacesTheTargetButNeverEmptiesItsSource) {
  nfs_test::ScratchDir dir;
  const std::string a = dir.File("a.trc"), b = dir.File("b.trc");
  pelicor_test::WriteWholeFile(a, "new\n");
  pelicor_test::WriteWholeFile(b, "an older and longer text\n");
  std::string error;
  ASSERT_TRUE(os::CopyFileOverwrite(a, b, &error)) << error;
  EXPECT_EQ(nfs_test::ReadWholeFile(b), "new\n");
  EXPECT_FALSE(os::CopyFileOverwrite(a, a, &error));
  EXPECT_EQ(nfs_test::ReadWholeFile(a), "new\n");
  EXPECT_FALSE(os::CopyFileOverwrite(dir.File("gone.trc"), a, &error));
  EXPECT_EQ(error, pelicor_test::NoSuchFileText());
}

}  // namespace
