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

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_MANAGER_LISTING_NAMES_H_
