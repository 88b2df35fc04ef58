#include "transport/ftp_manager/listing_names.h"

#include <fstream>
#include <iterator>

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

bool IsPlainFileName(std::string_view name) {
  return name.find_first_of("/\\") == std::string_view::npos &&
         name.find("..") == std::string_view::npos;
}

}  // namespace transport
