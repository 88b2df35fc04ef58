#include "generated_truth.h"

namespace tracegen {

namespace {

std::string OneLine(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\n') {
      line += "\\n";
    } else {
      line += c;
    }
  }
  return line;
}

}  // namespace

void WriteTruth(std::ostream& out, const GeneratedTruth& truth) {
  out << "response\t" << truth.response_time << "\ncpu\t" << truth.cpu << "\ncalls\t" << truth.calls
      << '\n';
  for (const auto& [name, event] : truth.events) {
    out << "event\t" << name << '\t' << event.count << '\t' << event.total << '\t' << event.max
        << '\n';
  }
  std::size_t number = 0;
  for (const auto& [text, s] : truth.statements) {
    ++number;
    out << "statement\t" << number << "\tdepth\t" << s.depth << "\tcpu\t" << s.cpu << "\telapsed\t"
        << s.elapsed << "\trows\t" << s.rows << "\tinclusive_waits\t" << s.inclusive_wait_time;
    static constexpr const char* kKinds[3] = {"parse", "exec", "fetch"};
    for (std::size_t kind = 0; kind < 3; ++kind) {
      out << '\t' << kKinds[kind] << '\t' << s.calls[kind].count << '\t' << s.calls[kind].own_cpu
          << '\t' << s.calls[kind].own_elapsed;
    }
    out << "\n\tsql\t" << OneLine(text) << '\n';
    for (const auto& [name, event] : s.waits) {
      out << "\twait\t" << name << '\t' << event.count << '\t' << event.total << '\t' << event.max
          << '\n';
    }
  }
}

}  // namespace tracegen
