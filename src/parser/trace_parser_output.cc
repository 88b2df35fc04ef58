// CTraceParser's writers: thin calls into the document writers with the parser's own state.
#include <iostream>

#include "parser/aggregated_xml_writer.h"
#include "parser/call_xml_writer.h"
#include "parser/sort_step.h"
#include "parser/text_report.h"
#include "parser/trace_parser.h"
#include "support/xml_escape.h"

namespace parser {

DocumentContext CTraceParser::MakeDocumentContext() const {
  DocumentContext context;
  context.session_timestamp = session_timestamp_;
  context.first_cursor_time = first_cursor_time_;
  context.skip_waits = skip_waits_;
  context.skip_binds = skip_binds_;
  context.top_level_only = top_level_only_;
  context.output_directory = output_directory_;
  context.time_divisor = time_divisor_;
  // A parser made without a database version takes the major version from the trace's banner,
  // so that a 9i trace is not divided as if it counted centiseconds.
  context.oracle_major_version = has_version_ ? version_[0] : MajorVersionForWriters();
  context.statement_id = name_;
  context.sort_options = sort_options_;
  return context;
}

void CTraceParser::CreateXML(std::string file_name) {
  WriteCallXml(table_.closed(), MakeDocumentContext(), std::move(file_name));
}

void CTraceParser::CreateTkprofXML(std::string file_name) {
  WriteTkprofXml(table_.closed(), MakeDocumentContext(), std::move(file_name), &time_divisor_);
}

void CTraceParser::CreateSortedXML(std::string file_name) {
  WriteSortedXml(table_.closed(), MakeDocumentContext(), std::move(file_name), &time_divisor_);
}

void CTraceParser::SortClosedStatements() {
  SortStatements(table_.closed(), sort_options_);
}

void CTraceParser::WriteTextReport(std::ostream& out) {
  parser::WriteTextReport(table_.closed(), MakeDocumentContext(), out);
}

void CTraceParser::WriteTextReport() {
  WriteTextReport(std::cout);
}

std::string CTraceParser::EscapeXml(std::string_view text) const {
  return support::XmlEscaped(text);
}

}  // namespace parser
