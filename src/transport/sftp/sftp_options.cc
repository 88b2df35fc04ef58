#include "transport/sftp/sftp_options.h"

#include <charconv>

namespace transport::sftp {

namespace {

bool ParsePort(std::string_view text, int* port) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || value < 1 || value > 65535) {
    return false;
  }
  *port = value;
  return true;
}

}  // namespace

bool SetHostAndPort(std::string_view text, SftpOptions* options) {
  std::string_view host = text;
  int port = 22;
  if (!text.empty() && text.front() == '[') {
    // "[::1]:2222"
    const std::size_t close = text.find(']');
    if (close == std::string_view::npos) return false;
    host = text.substr(1, close - 1);
    const std::string_view rest = text.substr(close + 1);
    if (!rest.empty() && (rest.front() != ':' || !ParsePort(rest.substr(1), &port))) return false;
  } else if (const std::size_t colon = text.find(':'); colon != std::string_view::npos) {
    // Two colons or more: an IPv6 address, which needs brackets to carry a port.
    if (text.find(':', colon + 1) == std::string_view::npos) {
      host = text.substr(0, colon);
      if (!ParsePort(text.substr(colon + 1), &port)) return false;
    }
  }
  if (host.empty()) return false;
  options->host = std::string(host);
  options->port = port;
  return true;
}

std::string DisplayAddress(const SftpOptions& options) {
  const bool v6 = options.host.find(':') != std::string::npos;
  std::string text = v6 ? "[" + options.host + "]" : options.host;
  if (options.port != 22) text += ":" + std::to_string(options.port);
  return text;
}

}  // namespace transport::sftp
