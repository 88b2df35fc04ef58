#include "transport/nfs/nfs_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "../support/platform.h"
#include "../support/raised.h"
#include "scratch_dir.h"

namespace {

namespace fs = std::filesystem;
using nfs_test::ScratchDir;
using pelicor_test::Raised;

constexpr std::uint64_t kGiB = 1024ull * 1024 * 1024;
constexpr const char* kListing = "NfsTraceFileList.txt";

class NfsListing : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(nfs_test::SetTimeZone("UTC0")) << "the listings below are in UTC";
    manager_.SetConnectInfo(udump_.str().c_str());
    manager_.SetLocalDirectory(work_.str());
  }
  std::string Listing() const { return pelicor_test::ReadTextFile(work_.path() / kListing); }
  // The listing's lines in name order (names start at `name_column`). Windows lists in the file
  // system's own order (NTFS: by name without regard to case); POSIX sorts by name itself.
  std::string ListingByName(std::size_t name_column) const {
    std::istringstream text(Listing());
    std::vector<std::pair<std::string, std::string>> lines;  // (name, line)
    for (std::string line; std::getline(text, line);) {
      lines.emplace_back(line.substr(std::min(line.size(), name_column)), line + "\n");
    }
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const auto& entry : lines) sorted += entry.second;
    return sorted;
  }

  ScratchDir udump_;
  ScratchDir work_;
  transport::CNfsManager manager_;
};

TEST_F(NfsListing, WritesNamesSizesAndLocalTimesSortedByName) {
  udump_.AddFile("ora_00123.trc", 1234);
  udump_.AddFile("ORA_1.TRC", 0, nfs_test::kJuly4 + 86400 * 180 + 59);
  udump_.AddFile("my trace \xc3\xa4.trc", 7);
  udump_.AddFile("big_3g.trc", 3 * kGiB);       // low 32 bits read as -1073741824
  udump_.AddFile("huge_4g.trc", 4 * kGiB + 5);  // the high bits are simply lost
  udump_.AddFile("notes.txt", 10);
  fs::create_directory(udump_.path() / "old.trc");
  nfs_test::SetModificationTime(udump_.path() / "old.trc", nfs_test::kJuly4);

  manager_.GetTraceFileList(1, "*.trc");
  EXPECT_EQ(ListingByName(29),
            "           0 12/31/2004 13:05 ORA_1.TRC\n"
            " -1073741824 07/04/2004 13:05 big_3g.trc\n"
            "           5 07/04/2004 13:05 huge_4g.trc\n"
            "           7 07/04/2004 13:05 my trace \xc3\xa4.trc\n"
            "           0 07/04/2004 13:05 old.trc\n"
            "        1234 07/04/2004 13:05 ora_00123.trc\n");
  manager_.GetTraceFileList(0, "*A*C*");
  EXPECT_EQ(ListingByName(0), "ORA_1.TRC\nmy trace \xc3\xa4.trc\nora_00123.trc\n");
}

TEST_F(NfsListing, ShowsTimesInTheLocalZone) {
  if (!nfs_test::SetTimeZone("EST5")) {
    GTEST_SKIP() << "Windows takes its time zone from the system when the process starts; "
                    "this run converts file times in UTC only";
  }
  udump_.AddFile("ora_00123.trc", 1234);
  manager_.GetTraceFileList(2, "ora_0*");
  EXPECT_EQ(Listing(), "        1234 07/04/2004 08:05 ora_00123.trc\n");
}

TEST_F(NfsListing, LeavesAnEmptyListingWhenTheSearchCannotStart) {
  udump_.AddFile("notes.txt", 10);
  EXPECT_EQ(
      Raised([&] { manager_.GetTraceFileList(1, "*.trc"); }),
      "NfsManager|NfsManger::GetTraceFileList|FindFirstFile|" + pelicor_test::NoSuchFileText());
  EXPECT_EQ(Listing(), "");

  manager_.SetConnectInfo((udump_.path() / "gone").string().c_str());
  EXPECT_EQ(Raised([&] { manager_.GetTraceFileList(0, "*.trc"); }),
            "NfsManager|NfsManger::GetTraceFileList|FindFirstFile|" +
                pelicor_test::NoSuchDirectoryText());
}

TEST_F(NfsListing, ReportsADirectoryItMayNotRead) {
#ifdef _WIN32
  GTEST_SKIP() << "no POSIX permission bits on Windows: under Wine every host folder the user "
                  "owns is readable";
#else
  udump_.AddFile("ora_1.trc", 1);
  fs::permissions(udump_.path(), fs::perms::owner_write | fs::perms::owner_exec);
  fs::permissions(work_.path(), fs::perms::all);
  EXPECT_TRUE(nfs_test::RunUnprivileged([&] {
    return Raised([&] { manager_.GetTraceFileList(0, "*.trc"); }) ==
           "NfsManager|NfsManger::GetTraceFileList|FindFirstFile|Permission denied";
  }));
#endif
}

TEST_F(NfsListing, FailsOnAMissingSettingOrAnUnwritableListing) {
  transport::CNfsManager unset;
  EXPECT_EQ(Raised([&] { unset.SetConnectInfo(nullptr); }),
            "NfsManager|NfsManger|SetConnectInfo|NFS qualified trace path is empty!");
  unset.SetConnectInfo("");
  EXPECT_EQ(Raised([&] { unset.GetTraceFileList(1, "*.trc"); }),
            "NfsManager|NfsManger::Init|Init|NFS working dir or qualified trace path is not set!");
  std::string name;
  EXPECT_EQ(Raised([&] { unset.GetTraceFileNameFromPID("1", &name); }),
            "NfsManager|NfsManger::GetTraceFileNameFromPID|Init|NFS working dir or qualified "
            "trace path is not set!");

  udump_.AddFile("ora_1.trc", 1);
  manager_.SetLocalDirectory((work_.path() / "missing").string());
  EXPECT_EQ(Raised([&] { manager_.GetTraceFileList(1, "*.trc"); }),
            "NfsManager|NfsManger::GetTraceFileList|fopen|NFS failed to get remote file listing!");
}

// The name is the one left in the output, also after a failure; "" raised means success.
struct PidCase {
  const char* what;
  std::vector<std::pair<const char*, std::uint64_t>> files;
  const char *pid, *name;
  std::uint32_t size;
  const char* raised;
};

constexpr const char* kNoMatch =
    "NfsManager|NfsManger::GetTraceFileList|FindFirstFile|NFS did not find a matched trace file "
    "for the session!";
constexpr const char* kTwoMatch =
    "NfsManager|NfsManger::GetTraceFileList|FindFirstFile|NFS did not find a unique converted "
    "trace file for the session! Check the trace files in the user_dump_dest. Clean up if "
    "necessary.";
constexpr const char* kLongPid =
    "Pelicor|ConvertPID2TraceFilename|ConvertPID2TraceFilename|The digits of PID is more than 5, "
    "which is not supported by this version!";
constexpr const char* kNotFound =
    "NfsManager|NfsManger::GetTraceFileNameFromPID|FindFirstFile|NFS failed to open trace file "
    "for the session!";

TEST(NfsTraceFileFromPid, PicksTheSessionsFileAmongCandidates) {
  // clang-format off
  const PidCase cases[] = {
      {"single candidate, not checked", {{"ora_12.trc", 40}, {"ora_12.log", 1}}, "12",
       "ora_12.trc", 40, ""},
      {"pid inside a longer pid", {{"ora_00012.trc", 100}, {"ora_00123.trc", 200}}, "12",
       "ora_00012.trc", 100, ""},
      {"third matches, first's size",
       {{"a_01123.trc", 100}, {"b_11234.trc", 200}, {"c_00123.trc", 300}}, "123",
       "c_00123.trc", 100, ""},
      {"case-insensitive, low 32 bits", {{"ORA_00077.TRC", 4 * kGiB + 9}}, "77",
       "ORA_00077.TRC", 9, ""},
      {"none matches", {{"ora_12.trc", 1}, {"ora_123.trc", 2}}, "12", "ora_123.trc", 0, kNoMatch},
      {"two match", {{"ora_00012.trc", 1}, {"x_00012_2.trc", 2}}, "12", "x_00012_2.trc", 0,
       kTwoMatch},
      {"long pid, several", {{"a_123456.trc", 1}, {"b_123456.trc", 2}}, "123456", "b_123456.trc",
       0, kLongPid},
      {"nothing found", {{"ora_99.trc", 1}}, "12", "", 0, kNotFound},
  };
  // clang-format on
  for (const PidCase& c : cases) {
    ScratchDir udump;
    for (const auto& [file, size] : c.files) udump.AddFile(file, size);
    transport::CNfsManager manager;
    manager.SetConnectInfo(udump.str().c_str());
    std::string name;
    std::uint32_t size = 0;
    EXPECT_EQ(Raised([&] { size = manager.GetTraceFileNameFromPID(c.pid, &name); }), c.raised)
        << c.what;
    EXPECT_EQ(name, c.name) << c.what;
    EXPECT_EQ(size, c.size) << c.what;
  }
}

}  // namespace
