// One stored copy of each distinct text (wait event names): a trace names a few hundred events
// millions of times. Views handed out stay valid as long as the pool lives.
#ifndef PELICOR_PARSER_NAME_POOL_H_
#define PELICOR_PARSER_NAME_POOL_H_

#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>

namespace parser {

class NamePool {
 public:
  NamePool() = default;
  NamePool(const NamePool&) = delete;
  NamePool& operator=(const NamePool&) = delete;

  // The pool's copy of `text`, made on first sight.
  std::string_view Intern(std::string_view text);

  std::size_t size() const { return names_.size(); }

 private:
  std::deque<std::string> names_;  // a deque never moves its elements
  std::unordered_set<std::string_view> index_;
  std::string_view last_;  // consecutive waits mostly name the same event
};

}  // namespace parser

#endif  // PELICOR_PARSER_NAME_POOL_H_
