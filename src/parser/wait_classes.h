// The class a wait event's time is summed under in the aggregated documents, by the event's name
// as the trace writes it:
//   WAIT #1: nam='db file sequential read' ela= 12 p1=4 p2=1234 p3=1   -> I/O
#ifndef PELICOR_PARSER_WAIT_CLASSES_H_
#define PELICOR_PARSER_WAIT_CLASSES_H_

#include <cstddef>
#include <string_view>

namespace parser {

enum WaitClass : std::size_t {
  kNetwork = 0,
  kIo = 1,
  kBuffer = 2,
  kLock = 3,
  kLatch = 4,
  kOther = 5,  // every event the table does not name
};
inline constexpr std::size_t kWaitClassCount = 6;

// Compares the whole name with each of the 72 known events, ignoring ASCII case: "LATCH FREE"
// is a Latch wait, "latch free " (trailing blank) is Other.
WaitClass WaitClassOf(std::string_view event_name);

}  // namespace parser

#endif  // PELICOR_PARSER_WAIT_CLASSES_H_
