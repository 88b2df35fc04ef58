// The UTL methods through the C ABI, as a host calls them: the 64-bit handle of its open
// connection reaches the session. (The ABI's strings: tests/hosting/c_api_test.c.)
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fake_oracle.h"
#include "pelicor/pelicor.h"

namespace {

using pelicor_test::FakeOracle;
using pelicor_test::kServerDumpDir;

// Takes a string handed out by the library.
std::string Take(char* text) {
  std::string copy = text ? text : "(null)";
  pelicor_free(text);
  return copy;
}

TEST(UtlCApi, StartUpOverTheHostsHandleThenStatementDocument) {
  FakeOracle server;
  pelicor_test::ScratchDir work;
  pelicor_test::WriteWholeFile(server.folder() / "orcl_ora_4242.trc", pelicor_test::FixtureTrace());
  pelicor* p = pelicor_new();
  char* msg = nullptr;
  char* out = nullptr;
  ASSERT_EQ(pelicor_SetWorkingDir(p, work.str().c_str(), &msg), 0);
  Take(msg);

  const std::uint64_t handle = server.HostHandle();
  EXPECT_EQ(pelicor_ZantivUtlTrcStartUp(p, handle, 92, "scott", "tiger", "orcl", kServerDumpDir,
                                        "17,4711", nullptr, "", &out, &msg),
            0);
  EXPECT_EQ(Take(msg), "OK");
  EXPECT_EQ(Take(out), "orcl_ora_4242.xml");

  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(work.path());
  EXPECT_EQ(pelicor_ZantivGetTraceInfo(p, "commit", "9.2.0.4.0", &msg), 0);
  EXPECT_EQ(Take(msg), "OK");
  EXPECT_TRUE(std::filesystem::exists(work.path() / "orcl_ora_4242.xml"));
  std::filesystem::current_path(previous);

  pelicor_delete(p);
}

}  // namespace
