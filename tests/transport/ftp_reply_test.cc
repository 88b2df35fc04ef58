#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "transport/ftp/ftp_client.h"
#include "transport/ftp/reply_parse.h"

namespace transport {
namespace {

TEST(FtpReplyParse, AnnouncedSize) {
  const std::pair<const char*, std::uint64_t> cases[] = {
      {"150 Opening BINARY mode data connection for ora_1234.trc (12345 bytes)", 12345},
      {"125 Data connection already open; Transfer starting (77 BYTES).", 77},
      {"150 Opening ASCII mode data connection for file list", 0},
      {"150 File status okay. About to open data connection.", 0},
      {"226 Transfer complete (12345 bytes)", 0},
      {"150 (bytes)", 0},
      {"150 x 99999999999999999999999 bytes", 9999999999999999999u},
      {"", 0},
  };
  for (const auto& [reply, size] : cases) EXPECT_EQ(ParseAnnouncedSize(reply), size) << reply;
}

using HostPortReader = bool (*)(std::string_view, std::string*, std::uint16_t*);

// The text, whether it reads, and the host and port it gives.
struct HostPortCase {
  const char* text;
  bool ok;
  std::string host;
  std::uint16_t port;
};

void ExpectHostPorts(HostPortReader read, const std::vector<HostPortCase>& cases) {
  for (const HostPortCase& c : cases) {
    std::string host;
    std::uint16_t port = 0;
    const bool ok = read(c.text, &host, &port);
    EXPECT_EQ(std::tie(ok, host, port), std::tie(c.ok, c.host, c.port)) << c.text;
  }
}

TEST(FtpReplyParse, PassiveReply) {
  ExpectHostPorts(ParsePassiveReply,
                  {{"227 Entering Passive Mode (127,0,0,1,195,80).", true, "127.0.0.1", 50000},
                   {"227 entering passive mode (10,1,2,3,4,1)", true, "10.1.2.3", 1025},
                   {"227 Entering Passive Mode 127,0,0,1,4,1", false, "", 0},
                   {"227 Entering Passive Mode (127,0,0,1,4).", false, "", 0},
                   {"227 Entering Passive Mode (127,0,0,1,256,1)", false, "", 0},
                   {"227 Entering Passive Mode (127,0,0,1,x,1)", false, "", 0},
                   {"227 Entering Passive Mode (127,0,0,1, 171, 37)", true, "127.0.0.1", 43813},
                   {"227 Entering Passive Mode ( 127, 0, 0, 1, 4 , 1 )", true, "127.0.0.1", 1025},
                   {"227 (1,2,3,4,0,0)", false, "", 0}});
}

TEST(FtpReplyParse, ExtendedPassiveReplyAndSize) {
  const std::pair<const char*, int> ports[] = {
      {"229 Entering Extended Passive Mode (|||6446|)", 6446},
      {"229 Entering Extended Passive Mode (!!!65535!)", 65535},
      {"229 Entering Extended Passive Mode (|||65536|)", -1},
      {"229 Entering Extended Passive Mode (||1|6446|)", -1},
      {"229 Entering Extended Passive Mode (|||6446)", -1},
      {"229 Entering Extended Passive Mode (|||0|)", -1},
      {"229 (|||", -1},
  };
  for (const auto& [reply, port] : ports) {
    std::uint16_t found = 0;
    EXPECT_EQ(ParseExtendedPassiveReply(reply, &found) ? found : -1, port) << reply;
  }
  const std::pair<const char*, std::int64_t> sizes[] = {
      {"213 1234567", 1234567}, {"213 0", 0}, {"213 12345678901", 12345678901}, {"213", -1},
      {"213 bytes", -1},        {"213-1", -1}};
  for (const auto& [reply, size] : sizes) {
    std::uint64_t found = 0;
    EXPECT_EQ(ParseSizeReply(reply, &found) ? static_cast<std::int64_t>(found) : -1, size) << reply;
  }
}

TEST(FtpReplyParse, HostAndPortAsTheUserWritesThem) {
  // clang-format off
  ExpectHostPorts(SplitHostPort, {
      {"dbhost", true, "dbhost", 0},     {"dbhost:2121", true, "dbhost", 2121},
      {"[::1]:2121", true, "::1", 2121}, {"[fe80::1]", true, "fe80::1", 0},
      {"fe80::1", true, "fe80::1", 0},   {"dbhost:", false, "", 0},
      {"dbhost:0", false, "", 0},        {"dbhost:70000", false, "", 0},
      {"[::1]2121", false, "", 0},       {"", false, "", 0}});
  // clang-format on
}

TEST(FtpReplyParse, QuotedDirectory) {
  std::string directory;
  EXPECT_TRUE(ParseQuotedDirectory("257 \"/u01/udump\" is the current directory", &directory));
  EXPECT_EQ(directory, "/u01/udump");
  EXPECT_TRUE(ParseQuotedDirectory("257 \"/a \"\"b\"\"\" created", &directory));
  EXPECT_EQ(directory, "/a \"b\"");
  EXPECT_FALSE(ParseQuotedDirectory("257 /u01/udump", &directory));
  EXPECT_FALSE(ParseQuotedDirectory("257 \"/unterminated", &directory));
}

TEST(FtpSessionLife, CodesWithoutServer) {
  EXPECT_EQ(FtpRelease(), 1006);
  EXPECT_EQ(FtpCWD("udump"), 1002);
  ASSERT_EQ(FtpInit(), 0);
  EXPECT_EQ(FtpInit(), 1001);
  EXPECT_EQ(FtpCWD("udump"), 1003);
  EXPECT_EQ(FtpRestart(0), 3);
  EXPECT_EQ(FtpRecvFile("x", "y", 'I', false), 1003);
  EXPECT_EQ(FtpLogin(nullptr, "u", "p"), 1000);
  EXPECT_EQ(FtpLogin("no-such-host.invalid", "u", "p"), 2001);
  EXPECT_EQ(FtpRelease(), 0);
  EXPECT_EQ(FtpRelease(), 1006);
}

}  // namespace
}  // namespace transport
