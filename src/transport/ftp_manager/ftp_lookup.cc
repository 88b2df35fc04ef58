// CFtpManager's search for the trace file of a session.
#include <vector>

#include "support/trace_naming.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_manager.h"
#include "transport/ftp_manager/ftp_manager_raise.h"
#include "transport/ftp_manager/listing_names.h"

namespace transport {

using ftp_manager::kManger;
using ftp_manager::Raise;

std::uint32_t CFtpManager::GetTraceFileNameFromPID(const std::string& session, std::string* name) {
  const std::string listing = LocalPath(kPidListingFileName);
  size_probe_open_ = false;  // the listing finishes a data connection left open
  if (FtpDir((session + "*.trc").c_str(), listing.c_str(), false) != kFtpOk) {
    Raise(kManger, "GetFileList", "FTP failed to get trace file for the session!");
  }
  std::vector<std::string> pieces;
  if (!ReadListingPieces(listing, &pieces)) {
    Raise(kManger, "GetFileList", "FTP failed to open trace file for the session!");
  }
  std::vector<std::string> names;
  std::vector<std::uint32_t> sizes;
  for (const std::string& piece : pieces) {
    if (piece.find(session) == std::string::npos) continue;
    // The name becomes a local file name when the caller copies the file.
    if (!IsPlainFileName(piece)) {
      Raise(kManger, "GetFileList",
            "FTP refused the trace file name " + piece +
                " from the server! A file name must not hold a path.");
    }
    *name = piece;
    names.push_back(piece);
    sizes.push_back(GetFileSize(piece));
  }
  if (names.empty()) {
    Raise(kManger, "GetFileList", "FTP did not find a trace file for the session!");
  }
  if (names.size() == 1) return sizes.front();

  // Session 12 also lists 123_ora.trc; the zero-padded "00012" tells the session's own file.
  const std::string converted = support::ConvertPID2TraceFilename(session);
  std::size_t matches = 0;
  std::uint32_t size = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i].find(converted) == std::string::npos) continue;
    *name = names[i];
    size = sizes[i];
    ++matches;
  }
  if (matches == 0) {
    Raise(kManger, "GetFileList", "FTP did not find a marched trace file for the session!");
  }
  if (matches > 1) {
    Raise(kManger, "GetFileList",
          "FTP did not find a unique converted trace file for the session!");
  }
  return size;
}

}  // namespace transport
