// ZantivGetTraceInfo: the sorted document of one statement of the session that the last
// validation or start-up found, read through the transport that found it.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "parser/trace_parser.h"

namespace facade {

int CPelicor::ZantivGetTraceInfo(const char* statement_id, const char* OraVer, std::string* msg) {
  return RunMethod(msg, [&] {
    parser::CTraceParser parser(Text(statement_id), Text(OraVer));
    parser.SetOutputDirectory(working_dir_);
    parser.SetSummaryOnly(true);  // the sorted document reads no call, bind or wait record
    switch (transport_kind_) {
      case kFtp:
        ParseSessionTraceOverFtp(parser);
        break;
      case kFileShare:
        parser.Parse(SharePath(trace_file_name_), start_offset_);
        break;
      case kUtl:
        ParseSessionTraceOverUtl(parser);
        break;
      case kNoTransport:
        return;  // nothing found yet: nothing to read, nothing to write
    }
    parser.CreateSortedXML(trace_file_name_);
  });
}

}  // namespace facade
