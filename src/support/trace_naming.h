// The two name rules of the service facade: a trace file name becomes the name of its XML file,
// and a server process id becomes the fixed-width text that singles out a session's trace file
// among several candidates ("123" -> "00123", found in "ora_00123.trc" but not in
// "ora_1234.trc").
//
// They live here rather than in the facade because the transports' trace file lookups use the
// process id rule too, and transports must not depend on the facade. Failures are raised as
// exceptions::ExceptionBase with file "Pelicor" and the function's own name as class and method.
#ifndef PELICOR_SUPPORT_TRACE_NAMING_H_
#define PELICOR_SUPPORT_TRACE_NAMING_H_

#include <string>
#include <string_view>

namespace support {

// Turns a trace file name into its XML name in place: the three characters after the FIRST dot
// become "xml", nothing else changes ("ora_00123.trc" -> "ora_00123.xml", "a.trc.bak" ->
// "a.xml.bak", "my.db_ora_1.trc" -> "my.xmlora_1.trc").
//
// Throws when `name` contains neither ".trc" nor ".TRC" (case-sensitive; ".Trc" does not count).
// Since one of those must be present, the first dot always has three characters after it; were
// it ever fewer, the name would grow to hold "xml" rather than be written past its end.
void ConvertFilename(std::string& name);

// Left-pads `pid` with '0' to five characters ("" -> "00000", "12a" -> "0012a"; characters are
// not checked to be digits). Throws when `pid` is longer than five characters.
std::string ConvertPID2TraceFilename(std::string_view pid);

}  // namespace support

#endif  // PELICOR_SUPPORT_TRACE_NAMING_H_
