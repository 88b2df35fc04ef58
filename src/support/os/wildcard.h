// File name patterns as the Windows directory search reads them, for platforms that have to
// filter a directory scan themselves.
#ifndef PELICOR_SUPPORT_OS_WILDCARD_H_
#define PELICOR_SUPPORT_OS_WILDCARD_H_

#include <string_view>

namespace os {

// True when `name` matches `pattern` as a whole: '*' stands for any run of characters (also
// none, also dots), '?' for exactly one character, every other character for itself, with ASCII
// letters compared without regard to case ("*.trc" matches "ORA_1.TRC"). Bytes above 0x7F match
// only themselves. Windows' legacy quirks (8.3 short names, '?' matching nothing before a dot,
// "*.*" matching names without a dot) are not reproduced.
bool WildcardMatch(std::string_view pattern, std::string_view name);

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_WILDCARD_H_
