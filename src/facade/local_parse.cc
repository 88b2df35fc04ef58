// The whole-file parses of a trace this machine can open: ParseFile (a local path) and
// NfsParseFile (a file of the trace directory, read in place on the share).
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/document_file.h"
#include "parser/output_sink.h"
#include "parser/streamed_call_document.h"
#include "parser/trace_parser.h"
#include "parser/xml_paths.h"

namespace facade {

namespace {

enum XmlType : std::uint16_t { kCallXml = 0, kAggregatedXml = 1, kBothXml = 2 };

void WriteDocuments(parser::CTraceParser& parser, const std::string& file_name,
                    std::uint16_t xmlType) {
  if (xmlType == kCallXml || xmlType == kBothXml) parser.CreateXML(file_name);
  if (xmlType == kAggregatedXml || xmlType == kBothXml) parser.CreateTkprofXML(file_name);
}

}  // namespace

// The call document, unsorted and unmerged, is written while the trace is read, so that a trace
// of any size parses in flat memory; its file takes its name only once it is complete. When the
// aggregated document follows, the statements written stay behind in their summary form.
void CPelicor::StreamCallDocument(parser::CTraceParser& parser, const std::string& file_name,
                                  std::uint16_t xmlType, const ParseStep& parse) {
  const std::string path = parser::CallXmlPath(file_name, parser.OutputDirectory());
  parser::OutputSink sink;
  parser::StreamedCallDocument document(
      parser, sink, [&path](parser::OutputSink& out) { return out.OpenFile(path); },
      xmlType == kBothXml ? parser::StreamedCallDocument::Written::kKeptAsSummaries
                          : parser::StreamedCallDocument::Written::kDropped);
  parse(parser);
  if (document.Finish()) {
    parser::FinishDocument(sink, path, "CreateXML");
  } else {
    parser.CreateXML(file_name);  // no file could be made: the usual way says so
  }
  if (xmlType == kBothXml) parser.CreateTkprofXML(file_name);
}

void CPelicor::ParseWholeTrace(const std::string& file_name, std::uint16_t isAggregated,
                               std::uint16_t xmlType, std::string* outputXML,
                               const ParseStep& parse) {
  parser::CTraceParser parser(sort_options_.get(), isAggregated > 0);
  // A name without ".trc" ends the call here, before anything is read or written.
  *outputXML = XmlFileName(file_name);
  parser.SetOutputDirectory(working_dir_);
  if ((xmlType == kCallXml || xmlType == kBothXml) && !sort_options_ && isAggregated == 0) {
    StreamCallDocument(parser, file_name, xmlType, parse);
    return;
  }
  // The aggregated document alone reads no call, bind or wait record: keep none.
  parser.SetSummaryOnly(xmlType == kAggregatedXml);
  parse(parser);
  if (sort_options_) parser.SortClosedStatements();
  WriteDocuments(parser, file_name, xmlType);
}

int CPelicor::ParseFile(const char* fileName, std::uint16_t /*parseOption*/,
                        std::uint16_t isAggregated, std::uint16_t xmlType, std::string* outputXML,
                        std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    ParseWholeTrace(file_name, isAggregated, xmlType, outputXML,
                    [&](parser::CTraceParser& parser) { parser.Parse(file_name, start_offset_); });
  });
}

int CPelicor::NfsParseFile(const char* fileName, std::uint16_t /*parseOption*/,
                           std::uint16_t isAggregated, std::uint16_t xmlType,
                           std::string* outputXML, std::string* msg) {
  outputXML->clear();
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    ParseWholeTrace(file_name, isAggregated, xmlType, outputXML, [&](parser::CTraceParser& parser) {
      parser.Parse(SharePath(file_name), start_offset_);
    });
  });
}

}  // namespace facade
