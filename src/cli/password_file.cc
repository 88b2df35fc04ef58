#include "cli/password_file.h"

#include <fstream>
#include <stdexcept>

namespace cli {

std::string ReadPasswordFile(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  if (!in || (!std::getline(in, line) && !in.eof())) {
    throw std::runtime_error("cannot read the password file " + path);
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();  // written on Windows
  return line;
}

}  // namespace cli
