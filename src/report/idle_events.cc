#include "report/idle_events.h"

#include <array>

namespace report {

namespace {

// SQL*Net message from dblink is a Network event by class, but it is the remote side's think
// time as seen from here, so it is read as time between calls too.
constexpr std::array<std::string_view, 22> kIdleEvents = {
    "SQL*Net message from client",
    "SQL*Net message from dblink",
    "SQL*Net vector message from client",
    "single-task message",
    "pipe get",
    "rdbms ipc message",
    "pmon timer",
    "smon timer",
    "jobq slave wait",
    "PL/SQL lock timer",
    "PX Idle Wait",
    "PX Deq: Execution Msg",
    "PX Deq: Execute Reply",
    "PX Deq: Table Q Normal",
    "PX Deq Credit: need buffer",
    "Streams AQ: waiting for messages in the queue",
    "wait for unread message on broadcast channel",
    "virtual circuit wait",
    "virtual circuit next request",
    "dispatcher timer",
    "class slave wait",
    "Space Manager: slave idle wait",
};

}  // namespace

bool IsIdleEvent(std::string_view event_name) {
  for (const std::string_view idle : kIdleEvents) {
    if (idle == event_name) return true;
  }
  return false;
}

}  // namespace report
