// Parses arbitrary bytes as a trace and runs every writer on the result: the call-by-call, the
// aggregated and the sorted document and the text report. Each document must be well-formed
// XML (checked with pugixml) whatever bytes the trace held; only the size-limit error and the
// sorted document's match failures may be raised.
#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "bytes_line_source.h"
#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/output_sink.h"
#include "parser/sort_options.h"
#include "parser/text_report.h"
#include "parser/trace_parser.h"
#include "support/exceptions.h"

namespace {

template <typename Write>
void CheckWellFormed(Write&& write) {
  std::ostringstream text;
  {
    parser::OutputSink out(text);
    write(out);
    out.Close();
  }
  const std::string document = text.str();
  pugi::xml_document parsed;
  if (!parsed.load_buffer(document.data(), document.size())) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const parser::SortOptions sort(size % 3 == 0, size % 5 != 0, true,
                                 static_cast<std::uint16_t>(size % 9));
  parser::CTraceParser trace(&sort, false);
  trace.SetMergeIdenticalSql(size % 2 == 0);
  try {
    fuzz::BytesLineSource source(bytes);
    trace.ParseStream(source, "fuzz.trc", 0);
  } catch (const exceptions::ExceptionBase&) {
  }
  trace.SortClosedStatements();
  parser::StatementList& closed = trace.ClosedStatements();
  parser::DocumentContext context = trace.MakeDocumentContext();
  if (!closed.empty()) context.statement_id = closed.front()->SqlText().substr(0, 6);
  CheckWellFormed([&](parser::OutputSink& out) { parser::WriteCallXml(closed, context, out); });
  CheckWellFormed([&](parser::OutputSink& out) { parser::WriteTkprofXml(closed, context, out); });
  if (!context.statement_id.empty()) {
    CheckWellFormed([&](parser::OutputSink& out) { parser::WriteSortedXml(closed, context, out); });
  }
  std::ostringstream report;
  parser::WriteTextReport(closed, context, report);
  return 0;
}
