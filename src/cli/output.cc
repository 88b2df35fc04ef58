#include "cli/output.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace cli {

void DeliverFile(const std::string& source, const std::string& target) {
  std::ifstream in(source, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + source);
  const bool empty = in.peek() == std::ifstream::traits_type::eof();
  if (target.empty()) {
    // Inserting an empty stream buffer would set failbit on cout.
    if (!empty) std::cout << in.rdbuf();
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write to standard output");
    return;
  }
  std::ofstream out(target, std::ios::binary | std::ios::trunc);
  if (!out) throw std::runtime_error("cannot create " + target);
  if (!empty) out << in.rdbuf();
  out.close();
  if (!out) throw std::runtime_error("cannot write " + target);
}

void DeliverListing(const std::string& source, const std::string& target) {
  std::ifstream in(source, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + source);
  std::string text(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
  std::string lines;
  lines.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') lines += text[i];
  }
  if (target.empty()) {
    std::cout << lines << std::flush;
    if (!std::cout) throw std::runtime_error("cannot write to standard output");
    return;
  }
  std::ofstream out(target, std::ios::binary | std::ios::trunc);
  if (!out) throw std::runtime_error("cannot create " + target);
  out << lines;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + target);
}

}  // namespace cli
