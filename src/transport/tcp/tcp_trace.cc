#include "transport/tcp/tcp_trace.h"

#include <atomic>
#include <cstdio>
#include <mutex>

#include "support/os/socket.h"

namespace transport {
namespace {

class StderrSink : public TraceSink {
 public:
  void Write(std::string_view text) override { std::fwrite(text.data(), 1, text.size(), stderr); }
};

std::atomic<unsigned>& Mask() {
  static std::atomic<unsigned> mask{0};
  return mask;
}

// The sink and the mutex that keeps lines of different threads whole.
struct SinkSlot {
  std::mutex mutex;
  std::shared_ptr<TraceSink> sink = std::make_shared<StderrSink>();
};

SinkSlot& Slot() {
  static SinkSlot slot;
  return slot;
}

const char* Prefix(unsigned level) {
  if (level & (kTraceCall | kTraceCall2)) return "calling ";
  if (level & kTraceInternal) return "internal ";
  if (level & (kTraceEnter | kTraceEnter2)) return "entering ";
  if (level & (kTraceExit | kTraceExit2)) return "exiting ";
  return "";
}

constexpr char kHexDigits[] = "0123456789ABCDEF";

}  // namespace

void TcpSetTraceMask(unsigned mask) {
  Mask().store(mask);
}
unsigned TcpGetTraceMask() {
  return Mask().load();
}

void TcpSetTraceSink(std::shared_ptr<TraceSink> sink) {
  std::lock_guard<std::mutex> lock(Slot().mutex);
  Slot().sink = sink ? std::move(sink) : std::make_shared<StderrSink>();
}

bool TraceEnabled(unsigned level) {
  return (Mask().load() & level) != 0;
}

void TraceRaw(std::string_view text) {
  std::lock_guard<std::mutex> lock(Slot().mutex);
  Slot().sink->Write(text);
}

void TraceLine(unsigned level, std::string_view message) {
  std::string line = "Proc " + std::to_string(os::CurrentThreadNumber()) + "\t";
  if (level & kTraceError) {
    line += "Error " + std::to_string(os::LastSocketError()) + " during ";
  } else {
    line += Prefix(level);
  }
  line.append(message);
  line += "\r\n";
  TraceRaw(line);
}

// "<                   32 32 30 20 72 65 61 64 - 79 0D 0A ...  220 ready.."
std::string HexDumpRow(std::string_view label, const char* data, std::size_t size) {
  std::string row(label.substr(0, 19));
  row += ' ';
  for (std::size_t i = 0; i < 16; ++i) {
    if (i < size) {
      const auto byte = static_cast<unsigned char>(data[i]);
      row += kHexDigits[byte >> 4];
      row += kHexDigits[byte & 15];
      row += ' ';
    } else {
      row += "   ";
    }
    if (i == 7) row += i < size ? "- " : "  ";
  }
  row += "  ";
  for (std::size_t i = 0; i < size && i < 16; ++i) {
    const auto byte = static_cast<unsigned char>(data[i]);
    row += (byte >= 0x20 && byte < 0x7f) ? static_cast<char>(byte) : '.';
  }
  row += "\r\n";
  return row;
}

void TraceHexDump(std::string_view label, const char* data, std::size_t size) {
  if (!TraceEnabled(kTraceHexDump)) return;
  if (size == 0) {
    TraceRaw(std::string(label) + " Empty Message\r\n");
    return;
  }
  std::string dump;
  for (std::size_t at = 0; at < size; at += 16) {
    dump += HexDumpRow(label, data + at, size - at < 16 ? size - at : 16);
  }
  TraceRaw(dump);
}

}  // namespace transport
