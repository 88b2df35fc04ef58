// Tracing of the TCP line layer: a process-wide bit mask selects what is written, a sink
// receives the text (stderr unless a test or a host installs its own). Lines read
// "Proc <thread>\t<prefix><message>\r\n"; bit kTraceHexDump adds hex dumps of the data sent
// and received. Mask and sink may be changed from any thread at any time.
#ifndef PELICOR_TRANSPORT_TCP_TCP_TRACE_H_
#define PELICOR_TRANSPORT_TCP_TCP_TRACE_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace transport {

// Trace levels, one bit each; a line is written when the mask holds its level's bit.
enum TraceLevel : unsigned {
  kTraceCall = 1,         // "calling "
  kTraceCall2 = 2,        // "calling "
  kTraceInternal = 8,     // "internal "
  kTraceEnter = 16,       // "entering "
  kTraceEnter2 = 32,      // "entering "
  kTraceExit = 64,        // "exiting "
  kTraceExit2 = 128,      // "exiting "
  kTraceHexDump = 16384,  // dumps of data sent (">") and received ("<")
  kTraceError = 32768,    // "Error <socket error> during "
};

class TraceSink {
 public:
  virtual ~TraceSink() = default;
  // Receives finished text (whole lines or dump rows, each ending in "\r\n").
  virtual void Write(std::string_view text) = 0;
};

void TcpSetTraceMask(unsigned mask);
unsigned TcpGetTraceMask();
// Where trace text goes from now on; null restores stderr.
void TcpSetTraceSink(std::shared_ptr<TraceSink> sink);

bool TraceEnabled(unsigned level);
// Writes one trace line of the level (the caller has checked TraceEnabled).
void TraceLine(unsigned level, std::string_view message);
// Writes text to the sink as it stands (the FTP client's verbose lines).
void TraceRaw(std::string_view text);
// Hex dump of a buffer under a label, when the mask holds kTraceHexDump.
void TraceHexDump(std::string_view label, const char* data, std::size_t size);
// One dump row of at most 16 bytes, "\r\n" included; exposed for tests.
std::string HexDumpRow(std::string_view label, const char* data, std::size_t size);

namespace detail {
inline void AppendPart(std::string& out, std::string_view text) {
  out.append(text);
}
inline void AppendPart(std::string& out, const char* text) {
  out.append(text ? text : "(null)");
}
template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
void AppendPart(std::string& out, Number value) {
  out.append(std::to_string(value));
}
}  // namespace detail

// Trace(kTraceEnter, "TcpRecv on socket ", socket, ". Timeout ", timeout): the parts are
// joined only when the level is switched on.
template <typename... Parts>
void Trace(unsigned level, const Parts&... parts) {
  if (!TraceEnabled(level)) return;
  std::string message;
  (detail::AppendPart(message, parts), ...);
  TraceLine(level, message);
}

}  // namespace transport

#endif  // PELICOR_TRANSPORT_TCP_TCP_TRACE_H_
