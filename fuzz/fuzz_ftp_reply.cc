// Feeds arbitrary server replies to everything the FTP client reads out of a reply, and
// checks the end-marker search of the line layer against a plain search.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "transport/ftp/command_table.h"
#include "transport/ftp/reply_parse.h"
#include "transport/tcp/marker_matcher.h"
#include "transport/tcp/tcp.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string reply(reinterpret_cast<const char*>(data), size);
  std::string text;
  std::uint16_t port = 0;
  transport::ParseAnnouncedSize(reply);
  transport::ParsePassiveReply(reply, &text, &port);
  transport::ParseQuotedDirectory(reply, &text);
  transport::SplitHostPort(reply, &text, &port);
  const int code = transport::TcpAtoi(reply.c_str());
  for (int row = 0; row < transport::kCommandCount; ++row) {
    transport::MapReply(static_cast<transport::FtpCommand>(row), code);
  }
  // First byte: marker length; then the marker; the rest is fed in two pieces.
  if (size < 2) return 0;
  const std::size_t length = 1 + data[0] % 8;
  if (size < 1 + length) return 0;
  const std::string_view marker(reply.data() + 1, length);
  const std::string_view rest(reply.data() + 1 + length, size - 1 - length);
  const std::size_t split = rest.size() / 2;
  // Compared with a plain search, for a first marker that ends after the split.
  const std::size_t expected = rest.find(marker);
  if (expected != std::string_view::npos && expected + length <= split) return 0;
  transport::MarkerMatcher matcher(marker, true);
  matcher.Feed(rest.data(), split);
  const std::size_t found = matcher.Find(rest.data() + split, rest.size() - split);
  if ((found == transport::MarkerMatcher::npos) != (expected == std::string_view::npos) ||
      (found != transport::MarkerMatcher::npos && split + found != expected + length)) {
    __builtin_trap();
  }
  return 0;
}
