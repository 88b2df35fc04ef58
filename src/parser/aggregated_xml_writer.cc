#include "parser/aggregated_xml_writer.h"

#include "parser/aggregated_statement.h"
#include "parser/document_file.h"
#include "parser/output_sink.h"
#include "parser/xml_paths.h"
#include "support/exceptions.h"

namespace parser {

namespace {

// Several of these method texts name the other writer; they are kept as callers have always
// seen them in the activity log.
[[noreturn]] void Fail(const char* method, const char* message) {
  throw exceptions::ExceptionBase("TraceParser", "CTraceParser::CreateXML", method, message);
}

constexpr const char* kInvalidName = "Trace parser found that filename specified is invalid!";
constexpr const char* kCannotCreate =
    "Trace parser could not create the output XML file specified!";

// The start both documents share once their own checks have passed: the name test, the file,
// the divisor. Returns the path of the document.
std::string OpenDocument(OutputSink& out, const DocumentContext& context,
                         const std::string& file_name, const char* open_method,
                         std::int64_t* time_divisor) {
  if (!HasTraceExtension(file_name)) Fail("CreateSortedXML", kInvalidName);
  std::string path = AggregatedXmlPath(file_name);
  if (!out.OpenFile(path)) Fail(open_method, kCannotCreate);
  if (time_divisor != nullptr) {
    *time_divisor = AggregatedTimeDivisor(context.oracle_major_version);
  }
  return path;
}

constexpr const char* kNoTraceInfo = "Trace parser did not find the parsed trace info!";
constexpr const char* kNoTraceInfoSorted =
    "Trace parser did not find the parsed trace info! Please check if the trace file has "
    "reached max_dump_file_size.";
constexpr const char* kNoStatementId =
    "Trace parser did not find a SQL with given statement id! Please check if the trace file has "
    "reached max_dump_file_size.";
constexpr const char* kNoMatch =
    "Trace parser did not find a SQL with the statement id! Please check if the trace file has "
    "reached max_dump_file_size.";
constexpr const char* kManyMatches =
    "Trace parser did not find a unique SQL with the statement id!";

int CountMatches(const StatementList& closed, const std::string& statement_id) {
  int matches = 0;
  for (const auto& statement : closed) {
    if (statement->SqlText().find(statement_id) != std::string::npos) ++matches;
  }
  return matches;
}

void CheckMatches(int matches) {
  if (matches == 0) Fail("CreateXML", kNoMatch);
  if (matches > 1) Fail("CreateXML", kManyMatches);
}

void CheckSortedInput(const StatementList& closed, const DocumentContext& context) {
  if (closed.empty()) Fail("CreateSortedXML", kNoTraceInfoSorted);
  if (context.statement_id.empty()) Fail("CreateSortedXML", kNoStatementId);
}

}  // namespace

void CheckTkprofXml(const StatementList& closed, const std::string& file_name) {
  if (closed.empty()) Fail("CreateSortedXML", kNoTraceInfo);
  if (!HasTraceExtension(file_name)) Fail("CreateSortedXML", kInvalidName);
}

void CheckSortedXml(const StatementList& closed, const DocumentContext& context,
                    const std::string& file_name) {
  CheckSortedInput(closed, context);
  if (!HasTraceExtension(file_name)) Fail("CreateSortedXML", kInvalidName);
  CheckMatches(CountMatches(closed, context.statement_id));
}

std::int64_t AggregatedTimeDivisor(int oracle_major_version) {
  return oracle_major_version < 9 ? 100 : 1000000;
}

void WriteTkprofXml(StatementList& closed, const DocumentContext& context, OutputSink& out) {
  const std::int64_t divisor = AggregatedTimeDivisor(context.oracle_major_version);
  out.Write("<STATEMENTS>\n");
  for (const auto& statement : closed) {
    WriteAggregatedStatement(out, *statement, AggregatedStyle::kTkprof, divisor);
  }
  out.Write("</STATEMENTS>\n");
}

int WriteSortedXml(StatementList& closed, const DocumentContext& context, OutputSink& out) {
  const std::int64_t divisor = AggregatedTimeDivisor(context.oracle_major_version);
  out.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?><STATEMENTS>\n");
  int matches = 0;
  for (const auto& statement : closed) {
    if (statement->SqlText().find(context.statement_id) == std::string::npos) continue;
    ++matches;
    WriteAggregatedStatement(out, *statement, AggregatedStyle::kSorted, divisor);
  }
  out.Write("</STATEMENTS>\n");
  return matches;
}

void WriteTkprofXml(StatementList& closed, const DocumentContext& context, std::string file_name,
                    std::int64_t* time_divisor) {
  if (closed.empty()) Fail("CreateSortedXML", kNoTraceInfo);
  OutputSink out;
  const std::string path = OpenDocument(out, context, file_name, "CreateTkprofXML", time_divisor);
  WriteTkprofXml(closed, context, out);
  FinishDocument(out, path, "CreateTkprofXML");
}

void WriteSortedXml(StatementList& closed, const DocumentContext& context, std::string file_name,
                    std::int64_t* time_divisor) {
  CheckSortedInput(closed, context);
  OutputSink out;
  const std::string path = OpenDocument(out, context, file_name, "CreateXML", time_divisor);
  const int matches = WriteSortedXml(closed, context, out);
  // The match failures below leave the complete document in place.
  FinishDocument(out, path, "CreateXML");
  CheckMatches(matches);
}

}  // namespace parser
