// Where the XML documents of a trace go: next to the trace's name, with the extension xml.
#ifndef PELICOR_PARSER_XML_PATHS_H_
#define PELICOR_PARSER_XML_PATHS_H_

#include <string>
#include <string_view>

namespace parser {

// The call-by-call document: the three characters after the first dot of `file_name` become
// "xml" (trace.trc -> trace.xml, a.b.trc -> a.xmlrc); a name without a dot, or with fewer than
// three characters after it, gets ".xml" appended. `output_directory` (empty, or ending in a
// separator) is put in front as it stands.
std::string CallXmlPath(std::string_view file_name, std::string_view output_directory);

// True when `file_name` contains ".trc" or ".TRC" anywhere (the aggregated documents' test).
bool HasTraceExtension(std::string_view file_name);

// The aggregated documents: the three characters after the last dot become "xml"
// (trace.TRC.bak -> trace.TRC.xml); fewer than three are replaced as a whole. A name without a
// dot gets ".xml" appended.
std::string AggregatedXmlPath(std::string_view file_name);

}  // namespace parser

#endif  // PELICOR_PARSER_XML_PATHS_H_
