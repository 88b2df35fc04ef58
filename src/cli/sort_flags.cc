#include "cli/sort_flags.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace cli {

namespace {

constexpr std::array<std::string_view, 8> kKeyNames = {"count", "cpu",     "elapsed", "disk",
                                                       "query", "current", "misses",  "rows"};

}  // namespace

std::optional<std::uint16_t> SortKeyNumber(const std::string& name) {
  for (std::size_t i = 0; i < kKeyNames.size(); ++i) {
    if (kKeyNames[i] == name) return static_cast<std::uint16_t>(i);
  }
  return std::nullopt;
}

std::optional<parser::SortOptions> ToSortOptions(const SortFlags& flags) {
  if (flags.kinds.empty()) return std::nullopt;
  bool prs = false;
  bool exe = false;
  bool fch = false;
  std::string_view rest = flags.kinds;
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    const std::string_view kind = rest.substr(0, comma);
    if (kind == "prs") {
      prs = true;
    } else if (kind == "exe") {
      exe = true;
    } else if (kind == "fch") {
      fch = true;
    } else {
      throw std::invalid_argument("--sort: unknown call kind '" + std::string(kind) +
                                  "' (use prs, exe, fch)");
    }
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
  }
  const std::optional<std::uint16_t> key = SortKeyNumber(flags.key);
  if (!key) {
    throw std::invalid_argument("--key: unknown sort key '" + flags.key +
                                "' (use count, cpu, elapsed, disk, query, current, misses, rows)");
  }
  return parser::SortOptions(prs, exe, fch, *key);
}

}  // namespace cli
