#include "parser/name_pool.h"

namespace parser {

std::string_view NamePool::Intern(std::string_view text) {
  if (text == last_ && last_.data() != nullptr) return last_;
  auto found = index_.find(text);
  if (found == index_.end()) {
    const std::string& stored = names_.emplace_back(text);
    found = index_.insert(std::string_view(stored)).first;
  }
  last_ = *found;
  return last_;
}

}  // namespace parser
