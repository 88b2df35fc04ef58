// A trace named on the command line, made readable as a plain local file: the file itself when
// it is one, else its text unpacked into a private scratch directory. Compressed traces
// (.gz, .bz2, .xz, .zst, told by their first bytes, not their names), a .zip holding a trace,
// and "-" (standard input, itself possibly compressed) are read through libarchive.
//
// The unpacked copy is named after the trace without its compression suffix ("orcl_ora_1.trc.gz"
// gives "orcl_ora_1.trc", a .zip entry keeps its own name), so documents named after the trace
// are the plain file's. Failures throw std::runtime_error naming the trace.
#ifndef PELICOR_CLI_LOCAL_TRACE_H_
#define PELICOR_CLI_LOCAL_TRACE_H_

#include <memory>
#include <string>

#include "cli/scratch_dir.h"

namespace cli {

class LocalTrace {
 public:
  explicit LocalTrace(const std::string& name);
  LocalTrace(const LocalTrace&) = delete;
  LocalTrace& operator=(const LocalTrace&) = delete;
  ~LocalTrace();

  // The plain file to parse: the trace itself, or its unpacked copy.
  const std::string& path() const { return path_; }
  // True when path() is an unpacked copy.
  bool unpacked() const { return scratch_ != nullptr; }

 private:
  std::unique_ptr<ScratchDir> scratch_;
  std::string path_;
};

}  // namespace cli

#endif  // PELICOR_CLI_LOCAL_TRACE_H_
