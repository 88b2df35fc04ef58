// The command's sort flags: `--sort prs,exe,fch` chooses the call kinds summed for sorting and
// `--key count|cpu|elapsed|disk|query|current|misses|rows` the counter sorted on.
#ifndef PELICOR_CLI_SORT_FLAGS_H_
#define PELICOR_CLI_SORT_FLAGS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "parser/sort_options.h"

namespace cli {

struct SortFlags {
  std::string kinds;  // empty: no sorting
  std::string key = "elapsed";
};

// The sort options the flags ask for, nothing when no kind was named. Throws
// std::invalid_argument with a message naming the bad word.
std::optional<parser::SortOptions> ToSortOptions(const SortFlags& flags);

// The key's number (count 0 ... rows 7), or nothing for an unknown name.
std::optional<std::uint16_t> SortKeyNumber(const std::string& name);

}  // namespace cli

#endif  // PELICOR_CLI_SORT_FLAGS_H_
