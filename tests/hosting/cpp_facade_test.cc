// The C++ class of pelicor.hpp over the shared library: outputs arrive as std::string, also
// on failure, and the object goes away with its owner.
#include <gtest/gtest.h>

#include <string>

#include "pelicor/pelicor.hpp"

namespace {

TEST(PelicorClass, HandsOutMessagesAndOutputs) {
  pelicorxx::Pelicor service;
  std::string xml = "stale";
  std::string msg;
  EXPECT_EQ(service.SetWorkingDir("/nonexistent", &msg), 0);
  EXPECT_EQ(msg, "OK");
  EXPECT_EQ(service.ParseFile("trace.log", 0, 0, 0, &xml, &msg), 1);
  EXPECT_EQ(msg, "Filename does not contain '.trc' !");
  EXPECT_EQ(xml, "");
  EXPECT_EQ(service.ParseFile("gone.trc", 0, 0, 0, &xml, &msg), 1);
  EXPECT_EQ(msg, "Trace parser failed to open parse file!");
  EXPECT_EQ(xml, "gone.xml");
  EXPECT_EQ(service.ZantivNfsTrcStartUp(nullptr, "1", nullptr, &msg), 1);
  EXPECT_EQ(msg, "udump/PID can not be empty! Check registry setting.");
  EXPECT_EQ(service.ZantivGetTraceInfo("x", "9.2.0.4.0", &msg), 0);
  EXPECT_EQ(msg, "OK");
}

}  // namespace
