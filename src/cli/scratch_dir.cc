#include "cli/scratch_dir.h"

#include <chrono>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

#include "support/os/termination.h"

namespace cli {

ScratchDir::ScratchDir() {
  std::error_code error;
  const std::filesystem::path base = std::filesystem::temp_directory_path(error);
  if (error) throw std::runtime_error("no temporary directory: " + error.message());
  std::mt19937_64 random(
      static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
  for (int attempt = 0; attempt < 16; ++attempt) {
    path_ = base / ("pelicor-" + std::to_string(random() % 1000000000));
    if (std::filesystem::create_directory(path_, error)) {
      os::RemoveOnTermination(path_.string());  // Ctrl-C or kill leave no folder behind
      return;
    }
  }
  throw std::runtime_error("cannot create a temporary directory in " + base.string() + ": " +
                           error.message());
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
  os::ForgetOnTermination(path_.string());
}

}  // namespace cli
