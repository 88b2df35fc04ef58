// The wait events that mean the session had nothing to do: the database waited for the client
// (or a pipe, a queue, a timer) between calls. Their time is response time the database did
// not spend, so the profile shows it apart from the waits inside calls:
//   WAIT #0: nam='SQL*Net message from client' ela= 1206 driver id=1650815232 #bytes=1 p3=0
#ifndef PELICOR_REPORT_IDLE_EVENTS_H_
#define PELICOR_REPORT_IDLE_EVENTS_H_

#include <string_view>

namespace report {

// Exact names, as every release writes them; 9i and earlier have no wait classes, so the list
// is by name for all releases.
bool IsIdleEvent(std::string_view event_name);

}  // namespace report

#endif  // PELICOR_REPORT_IDLE_EVENTS_H_
