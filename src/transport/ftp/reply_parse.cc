#include "transport/ftp/reply_parse.h"

#include <cctype>

namespace transport {
namespace {

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// A whole text of 1 to 5 digits with a value up to `limit`.
bool ReadNumber(std::string_view text, std::uint32_t limit, std::uint32_t* value) {
  if (text.empty() || text.size() > 5) return false;
  std::uint32_t number = 0;
  for (char c : text) {
    if (!IsDigit(c)) return false;
    number = number * 10 + static_cast<std::uint32_t>(c - '0');
  }
  if (number > limit) return false;
  *value = number;
  return true;
}

// The leading digits of a text (a port byte may be followed by ")." and the like).
std::string_view LeadingDigits(std::string_view text) {
  std::size_t end = 0;
  while (end < text.size() && IsDigit(text[end])) ++end;
  return text.substr(0, end);
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

bool SameIgnoringCase(std::string_view text, std::string_view lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[i])) != lower[i]) return false;
  }
  return true;
}

}  // namespace

std::uint64_t ParseAnnouncedSize(std::string_view reply) {
  if (reply.substr(0, 3) != "150" && reply.substr(0, 3) != "125") return 0;
  constexpr std::string_view kBytes = " bytes";
  std::size_t at = std::string_view::npos;
  for (std::size_t i = 0; i + kBytes.size() <= reply.size(); ++i) {
    if (SameIgnoringCase(reply.substr(i, kBytes.size()), kBytes)) {
      at = i;
      break;
    }
  }
  if (at == std::string_view::npos) return 0;
  std::size_t start = at;
  while (start > 0 && IsDigit(reply[start - 1]) && at - start < 19) --start;
  std::uint64_t size = 0;
  for (std::size_t i = start; i < at; ++i) size = size * 10 + static_cast<unsigned>(reply[i] - '0');
  return size;
}

bool ParsePassiveReply(std::string_view reply, std::string* host, std::uint16_t* port) {
  const std::size_t open = reply.find('(');
  if (open == std::string_view::npos) return false;
  std::string_view rest = reply.substr(open + 1);
  std::size_t commas[5];
  std::size_t found = 0;
  for (std::size_t i = 0; i < rest.size() && found < 5; ++i) {
    if (rest[i] == ',') commas[found++] = i;
  }
  if (found < 5) return false;
  std::string address;
  for (char c : rest.substr(0, commas[3])) {
    if (c != ' ') address += c == ',' ? '.' : c;
  }
  std::uint32_t high = 0;
  std::uint32_t low = 0;
  if (!ReadNumber(TrimBlanks(rest.substr(commas[3] + 1, commas[4] - commas[3] - 1)), 255, &high) ||
      !ReadNumber(LeadingDigits(TrimBlanks(rest.substr(commas[4] + 1))), 255, &low) ||
      high * 256 + low == 0) {
    return false;
  }
  *host = address;
  *port = static_cast<std::uint16_t>(high * 256 + low);
  return true;
}

bool ParseExtendedPassiveReply(std::string_view reply, std::uint16_t* port) {
  const std::size_t open = reply.find('(');
  if (open == std::string_view::npos || open + 4 >= reply.size()) return false;
  const char delimiter = reply[open + 1];
  if (reply[open + 2] != delimiter || reply[open + 3] != delimiter) return false;
  const std::string_view rest = reply.substr(open + 4);
  const std::size_t end = rest.find(delimiter);
  std::uint32_t number = 0;
  if (end == std::string_view::npos || !ReadNumber(rest.substr(0, end), 65535, &number) ||
      number == 0) {
    return false;
  }
  *port = static_cast<std::uint16_t>(number);
  return true;
}

bool ParseSizeReply(std::string_view reply, std::uint64_t* size) {
  if (reply.size() < 5 || reply[3] != ' ') return false;
  const std::string_view digits = LeadingDigits(reply.substr(4));
  if (digits.empty() || digits.size() > 19) return false;
  std::uint64_t value = 0;
  for (char c : digits) value = value * 10 + static_cast<unsigned>(c - '0');
  *size = value;
  return true;
}

bool ParseQuotedDirectory(std::string_view reply, std::string* directory) {
  std::size_t at = reply.find('"');
  if (at == std::string_view::npos) return false;
  std::string found;
  for (++at; at < reply.size(); ++at) {
    if (reply[at] != '"') {
      found += reply[at];
    } else if (at + 1 < reply.size() && reply[at + 1] == '"') {
      found += '"';
      ++at;
    } else {
      *directory = found;
      return true;
    }
  }
  return false;
}

bool SplitHostPort(std::string_view text, std::string* host, std::uint16_t* port) {
  std::string_view name = text;
  std::string_view port_text;
  if (!text.empty() && text.front() == '[') {
    const std::size_t close = text.find(']');
    if (close == std::string_view::npos) return false;
    name = text.substr(1, close - 1);
    std::string_view after = text.substr(close + 1);
    if (!after.empty()) {
      if (after.front() != ':') return false;
      port_text = after.substr(1);
      if (port_text.empty()) return false;
    }
  } else if (const std::size_t colon = text.find(':');
             colon != std::string_view::npos &&
             text.find(':', colon + 1) == std::string_view::npos) {
    name = text.substr(0, colon);
    port_text = text.substr(colon + 1);
    if (port_text.empty()) return false;
  }
  std::uint32_t number = 0;
  if (name.empty() ||
      (!port_text.empty() && (!ReadNumber(port_text, 65535, &number) || number == 0))) {
    return false;
  }
  *host = std::string(name);
  *port = static_cast<std::uint16_t>(number);
  return true;
}

}  // namespace transport
