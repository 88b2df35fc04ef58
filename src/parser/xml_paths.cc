#include "parser/xml_paths.h"

namespace parser {

namespace {

constexpr std::string_view kXml = "xml";

}  // namespace

std::string CallXmlPath(std::string_view file_name, std::string_view output_directory) {
  std::string path(output_directory);
  const std::size_t dot = file_name.find('.');
  if (dot == std::string_view::npos || file_name.size() - dot - 1 < kXml.size()) {
    path.append(file_name).append(".xml");
  } else {
    path.append(file_name).replace(output_directory.size() + dot + 1, kXml.size(), kXml);
  }
  return path;
}

bool HasTraceExtension(std::string_view file_name) {
  return file_name.find(".trc") != std::string_view::npos ||
         file_name.find(".TRC") != std::string_view::npos;
}

std::string AggregatedXmlPath(std::string_view file_name) {
  std::string path(file_name);
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos) return path.append(".xml");
  return path.replace(dot + 1, kXml.size(), kXml);
}

}  // namespace parser
