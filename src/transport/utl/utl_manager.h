// CUtlManager: a session's trace file read through the database itself, for servers whose dump
// directory is reachable neither over FTP nor as a share. It asks the server for its dump
// directory, platform, versions, instance and host name and the server process of a session,
// builds the candidate trace-file names of that platform, tests each with the server-side
// package vandel_trace_file_io (not ours: installed by the DBA), and streams the chosen file
// line by line through that package.
//
// The package as we call it: validate_file(dir, name) answers 1 for a file it can read;
// open_file(dir, name, 'R', trace_id) answers 0, or 20014 when the trace id does not single out
// one line of the file (reading then starts after that line); read_line(:buf, :len) answers 0
// with the next line (without its line end) or another number at the end of the file.
//
// Every failure is thrown as exceptions::ExceptionBase with file "UtlManager" and class
// "CUtlManager"; the queries' method text reads "GetOracleProcerssID", as hosts expect it. Oracle
// errors arrive as exceptions::OracleException. One thread uses an object at a time.
#ifndef PELICOR_TRANSPORT_UTL_UTL_MANAGER_H_
#define PELICOR_TRANSPORT_UTL_UTL_MANAGER_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "parser/line_source.h"
#include "transport/utl/utl_connect_info.h"

namespace db {
class DBSession;
class Query;
}  // namespace db

namespace transport {

// The platform codes of OsType().
enum UtlOsType : int { kUtlOtherOs = 0, kUtlWindows = 1, kUtlVms = 2, kUtlNetware = 3 };

class CUtlManager : public parser::LineSource {
 public:
  // The line buffer the package fills: at most 1023 bytes of text and a NUL.
  static constexpr int kLineBufferSize = 1024;

  CUtlManager();
  ~CUtlManager() override;
  CUtlManager(const CUtlManager&) = delete;
  CUtlManager& operator=(const CUtlManager&) = delete;

  // --- Trace file names ---------------------------------------------------------------------
  // The name of platform pattern `code` (1 to 7) for a server process `pid` of `instance`;
  // `flag` 1 picks the Windows forms of codes 1, 2 and 4. Any other code gives "".
  virtual std::string BuildTraceName(int code, const std::string& pid, const std::string& instance,
                                     int flag) const;
  // The service-process patterns 1 to 4 (VMS), each filled with `c`, `a`, then `b`.
  virtual std::string BuildServiceTraceName(int code, const std::string& a, const std::string& b,
                                            const std::string& c) const;
  // Whether the package can read `name` in `directory`.
  virtual bool ValidateFile(const std::string& directory, const std::string& name);

  // --- Connection ----------------------------------------------------------------------------
  virtual void SetConnectInfo(const UtlConnectInfo& info);
  // Opens the session from the stored record: over the handle when it is not 0, else by logon.
  // Throws "UTL failed to connect to Oracle using OCI dll!" when neither is given.
  virtual void Connect();
  // Stores the handle and release, then connects.
  virtual void Connect(std::uint64_t handle, std::uint16_t major, std::uint16_t minor);

  // --- What the server says about itself (each query raises its own message on no row) -----
  // user_dump_dest, read once.
  virtual const std::string& DumpDirectory();
  virtual int OsType();
  virtual std::array<int, 5> OsVersion();
  virtual std::array<int, 5> PlsqlVersion();
  virtual std::string SessionProcessId(long sid, long serial);
  virtual std::string InstanceName();
  virtual std::string HostName();

  // Refuses PL/SQL before 2.3: "UTL is not supported by this version of PL/SQL!".
  virtual void ValidatePlsqlVersion();
  // Proves that the package can be called; throws "UTL did not find a valid Vandel file IO
  // package!  Or the package is not accessible to the user." otherwise.
  virtual void CheckPackage();
  // The trace file of a session: `pid` is its server process id; when it is empty the process
  // is looked up by `session` ("SID,SERIAL#", as "123,4567"). The first candidate name that the
  // package accepts is the answer.
  virtual std::string CreateUtlFileName(const std::string& session, const std::string& pid);

  // --- Reading ---------------------------------------------------------------------------------
  // Opens `file_name` in the dump directory after the line that holds `trace_id`.
  virtual void OpenDataStream(const std::string& file_name, const std::string& trace_id);
  // The next line, ending in one "\n", or null at the end of the file.
  virtual const char* ReadLine();
  virtual void CloseDataStream();

  // --- parser::LineSource ----------------------------------------------------------------------
  // The whole file, less its first `offset` bytes (whole lines counted with their line feed).
  bool OpenLines(const std::string& name, std::uint64_t offset) override;
  bool OpenLinesAfterMarker(const std::string& name, const std::string& marker) override;
  bool ReadNextLine(std::string_view* line) override;
  void CloseLines() override;

 private:
  db::DBSession& Session();
  // The first column of the first row of `sql`; `message` when there is none.
  std::string QueryOrRaise(const std::string& sql, const char* message);
  int RunValidate(const std::string& directory, const std::string& name);

  UtlConnectInfo info_;
  std::unique_ptr<db::DBSession> session_;
  std::unique_ptr<db::Query> query_;  // the open/read statement, kept between lines
  std::optional<std::string> dump_directory_;
  // What the read block binds: the line (with room for the line feed we add) and its numbers.
  std::array<char, kLineBufferSize + 2> line_{};
  int line_length_ = 0;
  int result_ = 0;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_UTL_UTL_MANAGER_H_
