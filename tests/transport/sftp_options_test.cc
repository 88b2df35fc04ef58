// How `--host` reads: names, IPv4 and IPv6 addresses, with and without a port.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "transport/sftp/sftp_options.h"

namespace transport::sftp {
namespace {

TEST(SftpOptions, HostAndPortFromOneText) {
  struct Case {
    const char* text;
    const char* read;  // "host port (shown as)", or "refused"
  };
  const std::vector<Case> cases = {
      {"db1", "db1 22 (db1)"},
      {"db1:2222", "db1 2222 (db1:2222)"},
      {"10.0.0.5:22", "10.0.0.5 22 (10.0.0.5)"},
      {"::1", "::1 22 ([::1])"},
      {"[::1]:2222", "::1 2222 ([::1]:2222)"},
      {"[fe80::1]", "fe80::1 22 ([fe80::1])"},
      {"", "refused"},
      {":22", "refused"},
      {"db1:", "refused"},
      {"db1:0", "refused"},
      {"db1:65536", "refused"},
      {"db1:22x", "refused"},
      {"[::1", "refused"},
      {"[::1]2222", "refused"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    SftpOptions options;
    const bool read = SetHostAndPort(c.text, &options);
    EXPECT_EQ(read ? options.host + " " + std::to_string(options.port) + " (" +
                         DisplayAddress(options) + ")"
                   : "refused",
              c.read);
  }
}

}  // namespace
}  // namespace transport::sftp
