#include "parser/wait_classes.h"

#include <array>

namespace parser {

namespace {

struct WaitEvent {
  std::string_view name;
  WaitClass wait_class;
};

// In the order the events have always been looked up in; "buffer latch" is a Latch event
// although its name begins with "buffer".
constexpr std::array<WaitEvent, 72> kWaitEvents = {{
    {"BFILE check if exists", kIo},
    {"BFILE closure", kIo},
    {"BFILE get length", kIo},
    {"BFILE internal seek", kIo},
    {"BFILE read", kIo},
    {"DFS db file lock", kLock},
    {"DFS lock handle", kLock},
    {"PL/SQL lock timer", kLock},
    {"SQL*Net break/reset to client", kNetwork},
    {"SQL*Net break/reset to dblink", kNetwork},
    {"SQL*Net message from client", kNetwork},
    {"SQL*Net message from dblink", kNetwork},
    {"SQL*Net message to client", kNetwork},
    {"SQL*Net message to dblink", kNetwork},
    {"SQL*Net more data from client", kNetwork},
    {"SQL*Net more data from dblink", kNetwork},
    {"SQL*Net more data to client", kNetwork},
    {"SQL*Net more data to dblink", kNetwork},
    {"batched allocate scn lock request", kLock},
    {"buffer being modified waits", kBuffer},
    {"buffer busy due to global cache", kBuffer},
    {"buffer busy waits", kBuffer},
    {"buffer deadlock", kBuffer},
    {"buffer for checkpoint", kBuffer},
    {"buffer latch", kLatch},
    {"buffer read retry", kBuffer},
    {"control file parallel write", kIo},
    {"control file sequential read", kIo},
    {"control file single write", kIo},
    {"db file parallel read", kIo},
    {"db file parallel write", kIo},
    {"db file scattered read", kIo},
    {"db file sequential read", kIo},
    {"db file single write", kIo},
    {"direct path read", kIo},
    {"direct path write", kIo},
    {"file open", kIo},
    {"free buffer waits", kBuffer},
    {"global cache lock busy", kLock},
    {"global cache lock cleanup", kLock},
    {"global cache lock null to s", kLock},
    {"global cache lock null to x", kLock},
    {"global cache lock open null", kLock},
    {"global cache lock open s", kLock},
    {"global cache lock open x", kLock},
    {"global cache lock s to x", kLock},
    {"global cache multiple locks", kLock},
    {"io done", kIo},
    {"kcl bg acks", kLock},
    {"latch activity", kLatch},
    {"latch free", kLatch},
    {"library cache load lock", kLock},
    {"library cache lock", kLock},
    {"local write wait", kIo},
    {"lock manager wait for dlmd to shutdown", kLock},
    {"lock manager wait for remote message", kLock},
    {"log buffer space", kBuffer},
    {"log file parallel write", kIo},
    {"log file sequential read", kIo},
    {"log file single write", kIo},
    {"log file sync", kIo},
    {"parallel execution qref latch", kLatch},
    {"row cache lock", kLock},
    {"scginq AST call", kLock},
    {"timer in sksawat", kIo},
    {"wait for DLM latch", kLatch},
    {"wait for influx DLM latch", kLatch},
    {"wait for lock db to become frozen", kLock},
    {"wait for lock db to unfreeze", kLock},
    {"wait for ownership of group-owned lock", kLock},
    {"wait for recovery domain latch in kjpr", kLatch},
    {"write complete waits", kIo},
}};

char FoldCase(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (FoldCase(a[i]) != FoldCase(b[i])) return false;
  }
  return true;
}

}  // namespace

WaitClass WaitClassOf(std::string_view event_name) {
  for (const WaitEvent& event : kWaitEvents) {
    if (EqualIgnoringCase(event.name, event_name)) return event.wait_class;
  }
  return kOther;
}

}  // namespace parser
