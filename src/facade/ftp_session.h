// What CPelicor asks of the FTP transport: one logged-on session on the server's trace
// directory, for listings, downloads and a line stream of a trace file. The operations and
// their failures are CFtpManager's; this seam keeps the flows apart from how it is built.
#ifndef PELICOR_FACADE_FTP_SESSION_H_
#define PELICOR_FACADE_FTP_SESSION_H_

#include <cstdint>
#include <memory>
#include <string>

#include "facade/connect_info.h"
#include "parser/line_source.h"

namespace facade {

class FtpSession {
 public:
  virtual ~FtpSession() = default;

  // The four connection texts of the record, or given one by one.
  virtual void SetConnectInfo(const FtpConnectInfo& info) = 0;
  virtual void SetConnectInfo(const std::string& host_name, const std::string& user_name,
                              const std::string& password, const std::string& udump) = 0;
  // Where downloads and listing files go; the session appends the separator.
  virtual void SetWorkDir(const std::string& working_dir) = 0;
  // Logs on and changes to the trace directory.
  virtual void Init() = 0;
  virtual void Close() = 0;

  // Style 0 names only, 1 a long listing, into "FtpTraceFileList.txt".
  virtual void GetFileList(std::uint16_t list_style, const std::string& pattern) = 0;
  // Copies the remote file into the working directory under the same name.
  virtual void RetrieveFile(const std::string& name) = 0;
  // The session's trace file; returns the size the server announces for it.
  virtual std::uint32_t GetTraceFileNameFromPID(const std::string& pid, std::string* name) = 0;

  // A data stream on a remote file, read through Lines() after OpenDataStream (batch parses)
  // or opened by the parser itself through Lines().OpenLines (whole-file parses).
  virtual void OpenDataStream(const std::string& name, std::uint32_t offset) = 0;
  virtual void CloseDataStream() = 0;
  virtual parser::LineSource& Lines() = 0;
};

// A new, not yet connected session. Throws the transport's failure when the FTP client cannot
// start, and "FTP transport is not available in this build" where there is no FTP transport.
std::unique_ptr<FtpSession> MakeFtpSession();

}  // namespace facade

#endif  // PELICOR_FACADE_FTP_SESSION_H_
