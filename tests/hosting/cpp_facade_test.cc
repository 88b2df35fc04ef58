// The C++ class of pelicor.hpp over the shared library: outputs arrive as std::string, replaced
// also on failure, nullptr passes as a missing string and as an output that is not wanted.
#include <gtest/gtest.h>

#include <string>

#include "pelicor/pelicor.hpp"

namespace {

TEST(PelicorClass, HandsOutMessagesAndOutputs) {
  pelicorxx::Pelicor service;
  std::string xml = "stale";
  std::string msg;
  EXPECT_EQ(service.ParseFile("trace.log", 0, 0, 0, &xml, &msg), 1);
  EXPECT_EQ(msg + "|" + xml, "Filename does not contain '.trc' !|");
  EXPECT_EQ(service.ParseFile("gone.trc", 0, 0, 0, &xml, &msg), 1);
  EXPECT_EQ(msg + "|" + xml, "Trace parser failed to open parse file!|gone.xml");
  EXPECT_EQ(service.ZantivNfsTrcStartUp(nullptr, "1", nullptr, &msg), 1);
  EXPECT_EQ(msg, "udump/PID can not be empty! Check registry setting.");
  EXPECT_EQ(service.SetWorkingDir("/nonexistent", nullptr), 0);
}

}  // namespace
