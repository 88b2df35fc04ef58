// Names read back from a listing file that an FTP server sent, and the test a name must pass
// before it is used as a local file name.
#ifndef PELICOR_TRANSPORT_FTP_MANAGER_LISTING_NAMES_H_
#define PELICOR_TRANSPORT_FTP_MANAGER_LISTING_NAMES_H_

#include <string>
#include <string_view>
#include <vector>

namespace transport {

// The pieces of a listing file as a reader with a 256-byte line buffer sees them: a line of
// more than 255 characters arrives as several pieces. Line ends are removed (CR LF as the
// servers send them, a lone LF, a CR before the end of a piece). False when the file cannot
// be opened.
bool ReadListingPieces(const std::string& path, std::vector<std::string>* pieces);

// True when `name` can be joined to a local directory without leaving it: it holds no '/',
// no '\' and no "..". ("ora_1234.trc" passes; "../evil.trc", "sub/a.trc" do not.)
bool IsPlainFileName(std::string_view name);

// True when `pattern` holds a wildcard ('*' or '?').
bool HasWildcard(std::string_view pattern);

// Keeps the lines of a listing file whose name matches `pattern` (the wildcards of
// os::WildcardMatch), each with its own line end. The name is the whole line of a names-only
// listing and the last field of a long one ("-rw-r--r-- 1 ora dba 4729 Jan 5 10:00 a.trc").
// False when the file cannot be read or written.
bool KeepMatchingLines(const std::string& path, std::string_view pattern, bool long_form);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_MANAGER_LISTING_NAMES_H_
