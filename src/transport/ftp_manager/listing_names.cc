#include "transport/ftp_manager/listing_names.h"

#include <fstream>
#include <iterator>

#include "support/os/wildcard.h"

namespace transport {

namespace {

// What one fgets of 255 characters at most takes.
constexpr std::size_t kPieceLength = 255;

void AddPiece(std::string_view piece, std::vector<std::string>* pieces) {
  while (!piece.empty() && (piece.back() == '\n' || piece.back() == '\r')) {
    piece.remove_suffix(1);
  }
  pieces->emplace_back(piece);
}

}  // namespace

bool ReadListingPieces(const std::string& path, std::vector<std::string>* pieces) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::string text(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
  // Text-mode reading: "ora_1234.trc\r\n" reads as "ora_1234.trc\n".
  std::string lines;
  lines.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    lines += text[i];
  }
  std::string_view rest(lines);
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    const std::size_t length = end == std::string_view::npos ? rest.size() : end + 1;
    const std::size_t take = length < kPieceLength ? length : kPieceLength;
    AddPiece(rest.substr(0, take), pieces);
    rest.remove_prefix(take);
  }
  return true;
}

bool HasWildcard(std::string_view pattern) {
  return pattern.find_first_of("*?") != std::string_view::npos;
}

namespace {

std::string_view ListedName(std::string_view line, bool long_form) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  if (!long_form) return line;
  const std::size_t blank = line.find_last_of(" \t");
  return blank == std::string_view::npos ? line : line.substr(blank + 1);
}

}  // namespace

bool KeepMatchingLines(const std::string& path, std::string_view pattern, bool long_form) {
  std::string text;
  {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
  }
  std::string kept;
  std::string_view rest(text);
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    const std::string_view line =
        rest.substr(0, end == std::string_view::npos ? rest.size() : end + 1);
    rest.remove_prefix(line.size());
    const std::string_view name = ListedName(line, long_form);
    if (!name.empty() && os::WildcardMatch(pattern, name)) kept.append(line);
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << kept;
  out.close();
  return static_cast<bool>(out);
}

bool IsPlainFileName(std::string_view name) {
  return name.find_first_of("/\\") == std::string_view::npos &&
         name.find("..") == std::string_view::npos;
}

}  // namespace transport
