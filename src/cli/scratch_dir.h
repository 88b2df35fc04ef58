// A private temporary directory that is removed with everything in it when the object goes.
// The transports write their listing files into a working directory; the command gives them
// one of these and copies the listing to where the user asked.
#ifndef PELICOR_CLI_SCRATCH_DIR_H_
#define PELICOR_CLI_SCRATCH_DIR_H_

#include <filesystem>

namespace cli {

class ScratchDir {
 public:
  ScratchDir();  // throws std::runtime_error naming the directory when it cannot be made
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  ~ScratchDir();

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace cli

#endif  // PELICOR_CLI_SCRATCH_DIR_H_
