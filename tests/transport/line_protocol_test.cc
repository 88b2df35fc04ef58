#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "loopback.h"
#include "transport/tcp/tcp.h"

namespace transport {
namespace {

using pelicor_test::Loopback;
using Reader = std::function<int(Socket, char*, int, int, LogHandle)>;

struct LineCase {
  const char* name;
  Reader read;
  std::vector<std::string> chunks;
  bool close_after;
  int size;
  int status;
  std::string buffer;
};

TEST(LineProtocol, ReadsLinesAndReplies) {
  const std::string long_line = "220 " + std::string(100, 'x') + "\r\n";
  // clang-format off
  const LineCase cases[] = {
      {"line", TnReadLine, {"220 ready\r\n"}, false, 64, 1, "220 ready"},
      {"line without CR", TnReadLine, {"220 ready\n"}, false, 64, 1, "220 ready"},
      {"two-line reply", TnReadMultiLine, {"230-Hello\r\n", "230 Done\r\n"}, false, 64, 1,
       "230-Hello\n230 Done"},
      {"answer code", TnReadAnswerCode, {"230-Hello\r\n230 Done\r\n"}, false, 64, 230,
       "230-Hello\n230 Done"},
      {"line longer than the buffer", TnReadMultiLine, {long_line}, false, 32, 2,
       long_line.substr(0, 31)},
      {"closed inside a reply", TnReadMultiLine, {"230-Hello\r\n"}, true, 64, 0, "230-Hello\n"},
      // RFC 959: only the opening code and a blank end a reply that opened with "220-".
      {"digit-led line inside", TnReadAnswerCode,
       {"220-Welcome\r\n2024 maintenance window\r\n220-more\r\n220\r\n"}, false, 128, 220,
       "220-Welcome\n2024 maintenance window\n220-more\n220"},
      {"another code inside", TnReadMultiLine, {"211-Features:\r\n 212 x\r\n211 End\r\n"}, false,
       64, 1, "211-Features:\n 212 x\n211 End"},
      {"nothing comes", TnReadAnswerCode, {}, false, 64, -2, ""},
  };
  // clang-format on
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.name);
    Loopback pair;
    pair.Write(c.chunks, c.close_after);
    std::vector<char> buffer(static_cast<std::size_t>(c.size), 'z');
    EXPECT_EQ(c.read(pair.reader(), buffer.data(), c.size, 1, kNoLog), c.status);
    EXPECT_EQ(std::string(buffer.data()), c.buffer);
  }
}

// A reply that goes on for more than 64 KB is given up, however fast it comes. (One time-out
// bounding a reply that trickles in: FtpFaultTest.EndlessRepliesAndStallsEndWithinTheTimeOut.)
TEST(LineProtocol, EndlessReplyIsGivenUp) {
  Loopback pair;
  std::string lines;
  for (int i = 0; i < 300; ++i) lines += "220-" + std::string(300, 'x') + "\r\n";
  pair.Write({lines + "220 end\r\n"});
  char buffer[64];
  EXPECT_EQ(TnReadMultiLine(pair.reader(), buffer, sizeof buffer, 20, kNoLog), -1);
}

// A reply or a line longer than the buffer overflows (2) but keeps its start; the rest is read
// and dropped, so that the next reply is read whole.
TEST(LineProtocol, OverlongReplyLeavesTheNextReplyIntact) {
  std::string help = "214-The following commands are recognized:\r\n";
  for (int i = 0; i < 20; ++i) help += " ABOR ACCT ALLO APPE CDUP CWD DELE EPRT EPSV\r\n";
  const struct {
    std::vector<std::string> chunks;
    std::string start;
    int next_code;
  } cases[] = {
      {{help + "214 Direct comments to root.\r\n", "200 NOOP ok.\r\n"},
       "214-The following commands are recognized:\n ABOR ACCT ALLO APPE",
       200},
      {{"220 " + std::string(2000, 'x') + "\r\n221 Goodbye.\r\n"},
       "220 " + std::string(59, 'x'),
       221},
  };
  for (const auto& c : cases) {
    Loopback pair;
    pair.Write(c.chunks);
    char buffer[64];
    EXPECT_EQ(TnReadAnswerCode(pair.reader(), buffer, sizeof buffer, 1, kNoLog), 2);
    EXPECT_EQ(std::string(buffer), c.start);
    EXPECT_EQ(TnReadAnswerCode(pair.reader(), buffer, sizeof buffer, 1, kNoLog), c.next_code);
  }
}

}  // namespace
}  // namespace transport
