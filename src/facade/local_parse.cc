// The whole-file parses of a trace this machine can open: ParseFile (a local path) and
// NfsParseFile (a file of the trace directory, read in place on the share).
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"

namespace facade {

namespace {

enum XmlType : std::uint16_t { kCallXml = 0, kAggregatedXml = 1, kBothXml = 2 };

void WriteDocuments(parser::CTraceParser& parser, const std::string& file_name,
                    std::uint16_t xmlType) {
  if (xmlType == kCallXml || xmlType == kBothXml) parser.CreateXML(file_name);
  if (xmlType == kAggregatedXml || xmlType == kBothXml) parser.CreateTkprofXML(file_name);
}

}  // namespace

void CPelicor::ParseWholeTrace(const std::string& file_name, std::uint16_t isAggregated,
                               std::uint16_t xmlType, std::string* outputXML,
                               const ParseStep& parse) {
  parser::CTraceParser parser(sort_options_.get(), isAggregated > 0);
  // A name without ".trc" ends the call here, before anything is read or written.
  *outputXML = XmlFileName(file_name);
  parser.SetOutputDirectory(working_dir_);
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
