// CFtpManager's listings and its search for the trace file of a session.
#include <vector>

#include "support/trace_naming.h"
#include "transport/ftp/ftp_client.h"
#include "transport/ftp_manager/ftp_manager.h"
#include "transport/ftp_manager/ftp_manager_raise.h"
#include "transport/ftp_manager/listing_names.h"

namespace transport {

using ftp_manager::kManger;
using ftp_manager::Raise;

namespace {

// pyftpdlib and others take no pattern: "550 No such file or directory." to NLST *.trc.
bool RefusesPattern(int code) {
  return code == 500 || code == 501 || code == 550;
}

// proftpd answers a pattern that matches nothing with "450 No files found", others with 550.
bool ListsNothing(int code) {
  return code == 450 || code == 550;
}

}  // namespace

int CFtpManager::ListInto(const std::string& pattern, const std::string& local, bool long_form) {
  const int result = FtpDir(pattern.c_str(), local.c_str(), long_form);
  if (result == kFtpOk || !HasWildcard(pattern) || !RefusesPattern(FtpLastReplyCode())) {
    return result;
  }
  const int whole = FtpDir(nullptr, local.c_str(), long_form);
  if (whole != kFtpOk) return whole;
  return KeepMatchingLines(local, pattern, long_form) ? kFtpOk : kFtpCannotOpenFile;
}

std::vector<std::string> CFtpManager::ListCandidates(const std::string& pattern,
                                                     const std::string& session,
                                                     const std::string& listing,
                                                     bool none_is_empty) {
  if (const int result = ListInto(pattern, listing, false); result != kFtpOk) {
    if (none_is_empty && ListsNothing(FtpLastReplyCode())) return {};
    Raise(kManger, "GetFileList",
          WithTlsReason("FTP failed to get trace file for the session!", result));
  }
  std::vector<std::string> pieces;
  if (!ReadListingPieces(listing, &pieces)) {
    Raise(kManger, "GetFileList", "FTP failed to open trace file for the session!");
  }
  std::vector<std::string> names;
  for (const std::string& piece : pieces) {
    if (piece.find(session) == std::string::npos) continue;
    // The name becomes a local file name when the caller copies the file.
    if (!IsPlainFileName(piece)) {
      Raise(kManger, "GetFileList",
            "FTP refused the trace file name " + piece +
                " from the server! A file name must not hold a path.");
    }
    names.push_back(piece);
  }
  return names;
}

std::uint32_t CFtpManager::GetTraceFileNameFromPID(const std::string& session, std::string* name) {
  const SessionBinding bound(*this);
  const std::string listing = LocalPath(kPidListingFileName);
  size_probe_open_ = false;  // the listing finishes a data connection left open
  std::vector<std::string> names = ListCandidates(session + "*.trc", session, listing, true);
  // Oracle names its traces <sid>_ora_<pid>.trc: "4242*.trc" never finds orcl_ora_4242.trc.
  if (names.empty()) names = ListCandidates("*" + session + "*.trc", session, listing, false);
  if (names.empty()) {
    Raise(kManger, "GetFileList", "FTP did not find a trace file for the session!");
  }
  *name = names.back();
  if (names.size() == 1) return GetFileSize(*name);

  // Session 12 also lists 123_ora.trc; the zero-padded "00012" tells the session's own file.
  const std::string converted = support::ConvertPID2TraceFilename(session);
  std::size_t matches = 0;
  for (const std::string& candidate : names) {
    if (candidate.find(converted) == std::string::npos) continue;
    *name = candidate;
    ++matches;
  }
  if (matches == 0) {
    Raise(kManger, "GetFileList", "FTP did not find a marched trace file for the session!");
  }
  if (matches > 1) {
    Raise(kManger, "GetFileList",
          "FTP did not find a unique converted trace file for the session!");
  }
  return GetFileSize(*name);
}

}  // namespace transport
