#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "loopback.h"
#include "transport/tcp/tcp.h"

namespace transport {
namespace {

using pelicor_test::Loopback;
using pelicor_test::TraceCapture;

struct UntilCase {
  const char* name;
  std::vector<std::string> chunks;  // written 30 ms apart
  std::string marker;
  bool case_sensitive;
  int size;
  int status;
  std::string data;  // what lands in the buffer (*size bytes)
  std::string rest;  // what stays in the socket
  bool close_after = false;
};

TEST(TcpRecvUntilStr, DeliversDataInFrontOfTheMarkerAcrossReadsOrWhatArrived) {
  // clang-format off
  const UntilCase cases[] = {
      {"one read", {"220 ready\r\nNEXT"}, "\r\n", true, 64, 1, "220 ready", "NEXT"},
      {"marker split", {"220 ready\r", "\nNEXT"}, "\r\n", true, 64, 1, "220 ready", "NEXT"},
      {"long marker in three reads", {"data<E", "O", "M>tail"}, "<EOM>", true, 64, 1, "data", "tail"},
      {"false start before the marker", {"xaa", "aab", "r"}, "aab", true, 64, 1, "xaa", "r"},
      {"any case", {"dataEND."}, "end", false, 64, 1, "data", "."},
      {"case kept", {"dataEND."}, "end", true, 8, -9, "dataEND.", ""},
      {"overflow", {"0123456789\n"}, "\n", true, 4, -9, "0123", "456789\n"},
      {"marker right after a full buffer", {"0123\nx"}, "\n", true, 4, 1, "0123", "x"},
      {"peer closes first", {"partial"}, "\n", true, 64, 0, "partial", "", true},
      {"time-out", {}, "\n", true, 64, -2, "", ""},
  };
  // clang-format on
  for (const UntilCase& c : cases) {
    SCOPED_TRACE(c.name);
    Loopback pair;
    pair.Write(c.chunks, c.close_after);
    std::vector<char> buffer(static_cast<std::size_t>(c.size) + 1, '\0');
    int size = c.size;
    EXPECT_EQ(TcpRecvUntilStr(pair.reader(), buffer.data(), &size, c.marker.data(),
                              static_cast<int>(c.marker.size()), c.case_sensitive, 2, kNoLog),
              c.status);
    EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(size)), c.data);
    EXPECT_EQ(pair.Rest(), c.rest);
  }
}

TEST(TcpConnect, ReportsEachFailureByItsStatusAndAcceptTimesOut) {
  TcpInit();
  Socket socket = 42;
  std::uint16_t no_port = 0;
  EXPECT_EQ(TcpConnect(&socket, "127.0.0.1", nullptr, &no_port), -13);
  EXPECT_EQ(socket, kNoSocket);
  std::uint16_t port = 9;
  EXPECT_EQ(TcpConnect(&socket, "no-such-host.invalid", nullptr, &port), -4);
  // A port nobody listens on: take one from a listener, then close it.
  Socket listener = kNoSocket;
  std::uint16_t closed_port = 0;
  ASSERT_EQ(TcpGetListenSocket(&listener, nullptr, &closed_port, 1, "127.0.0.1"), 1);
  TcpClose(&listener);
  EXPECT_EQ(TcpConnect(&socket, "127.0.0.1", nullptr, &closed_port), -6);
  EXPECT_EQ(TcpConnect(nullptr, "127.0.0.1", nullptr, &port), -3);
  EXPECT_EQ(TnSend(kNoSocket, "NOOP", false, kNoLog), -1);
  Socket none = kNoSocket;
  EXPECT_EQ(TcpClose(&none), 1);
  // Nobody connects: the accept times out.
  std::uint16_t any_port = 0;
  ASSERT_EQ(TcpGetListenSocket(&listener, nullptr, &any_port, 1, "127.0.0.1"), 1);
  Socket accepted = kNoSocket;
  EXPECT_EQ(TcpAccept(&accepted, listener, 1), -2);
  EXPECT_EQ(accepted, kNoSocket);
  TcpClose(&listener);
}

TEST(TcpTrace, WritesPrefixedLinesAndHexDumps) {
  Loopback pair;
  std::string sent;
  {
    TraceCapture capture(kTraceEnter | kTraceExit | kTraceHexDump);
    TnSend(pair.writer(), "USER scott", false, kNoLog);
    sent = capture.text();
  }
  const std::string proc = "Proc " + std::to_string(os::CurrentThreadNumber()) + "\t";
  EXPECT_EQ(sent, proc + "entering TcpSend on socket " + std::to_string(pair.writer()) +
                      ". 12 bytes to be sent\r\n"
                      "> 55 53 45 52 20 73 63 6F - 74 74 0D 0A               USER scott..\r\n" +
                      proc + "exiting TnSend : return code 1\r\n");
  EXPECT_EQ(HexDumpRow("a label longer than nineteen", "0123456789abcdef", 16),
            "a label longer than 30 31 32 33 34 35 36 37 - 38 39 61 62 63 64 65 66   "
            "0123456789abcdef\r\n");
  TraceCapture capture(kTraceHexDump);
  TraceHexDump("Flushed", "", 0);
  EXPECT_EQ(capture.text(), "Flushed Empty Message\r\n");
}

}  // namespace
}  // namespace transport
