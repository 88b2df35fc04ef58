// Feeds arbitrary bytes to the trace parser twice: as the lines of a stream (dispatcher,
// scanners, statement table) and through the block reader (line pieces), in batches of two
// statements. Only the size-limit error may be raised.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "bytes_line_source.h"
#include "parser/trace_file_reader.h"
#include "parser/trace_parser.h"
#include "support/exceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    fuzz::BytesLineSource source(bytes);
    parser::CTraceParser trace;
    trace.SetMergeIdenticalSql(size % 2 == 0);
    while (trace.ParseStreamBatch(source, "fuzz.trc", 2, static_cast<std::uint8_t>(size % 8))) {
      trace.ClearClosedStatements();
    }
  } catch (const exceptions::ExceptionBase&) {
  }
  parser::TraceFileReader reader(std::make_unique<std::istringstream>(std::string(bytes)), 64);
  std::string_view piece;
  while (reader.ReadPiece(&piece)) {
    if (piece.size() > parser::TraceFileReader::kPieceLimit) __builtin_trap();
  }
  return 0;
}
