// CPelicor, the service object: it keeps the caller's settings (working directory, sort
// options, FTP, file-share and UTL connection data), the trace file found for a session with
// the offset from which its new lines start, and, between the calls of a batch parse, the
// parser and the transport that feeds it.
//
// Every method follows the same rules: `msg` receives "OK" on success ("MORE" when a batch
// parse has more to read) and the method returns 0; a failure puts its message alone into `msg`
// and returns 1. No exception of the ExceptionBase family leaves a method. Other outputs
// (`outputXML`, `fname`) are always set: empty unless the method got as far as filling them.
//
// String arguments are `const char*`; nullptr means "missing" (a null string of the host). The
// session methods (validation, start-up) refuse missing arguments with their own messages;
// everywhere else a missing string reads as empty text.
//
// Local paths join the working directory and a name with the platform separator; an empty
// working directory gives a lone separator, as the transports and writers have always seen it.
//
// One thread calls an object at a time; separate objects are independent.
#ifndef PELICOR_FACADE_PELICOR_H_
#define PELICOR_FACADE_PELICOR_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "facade/connect_info.h"
#include "facade/sftp_settings.h"
#include "transport/ftp_manager/ftp_connect_info.h"
#include "transport/nfs/nfs_connect_info.h"
#include "transport/tls/tls.h"

namespace parser {
class CTraceParser;
class SortOptions;
}  // namespace parser
namespace transport {
class CFtpManager;
class CNfsManager;
}  // namespace transport

namespace facade {

// Which transport the last successful validation or start-up used.
enum TransportKind : std::int32_t { kNoTransport = 0, kFtp = 1, kFileShare = 2, kUtl = 3 };

class CPelicor {
 public:
  CPelicor();
  ~CPelicor();
  CPelicor(const CPelicor&) = delete;
  CPelicor& operator=(const CPelicor&) = delete;

  // --- Settings ----------------------------------------------------------------------------
  // Stored as given (no separator added), also into the FTP and file-share records.
  int SetWorkingDir(const char* wDir, std::string* msg);
  // A new sort-options record (prs, exe, fch true when above 0; key stored as given) replaces
  // and releases the previous one.
  int SetSortOption(std::uint16_t prs, std::uint16_t exe, std::uint16_t fch, std::uint16_t key,
                    std::string* msg);
  // Stores the four texts; nothing is contacted.
  int FtpSetConnectInfo(const char* hostname, const char* username, const char* password,
                        const char* udump, std::string* msg);
  int NfsSetConnectInfo(const char* udump, std::string* msg);

  // --- Whole-file parses ---------------------------------------------------------------------
  // Parse `fileName` from the start offset and write the XML next to its name in the working
  // directory: xmlType 0 call by call, 1 aggregated, 2 both, other values none. `outputXML`
  // receives the XML file name (the trace name with the extension xml), not the document.
  // ParseFile opens `fileName` as given; NfsParseFile reads udump + separator + `fileName`;
  // FtpParseFile streams the remote file. `parseOption` is not used.
  int ParseFile(const char* fileName, std::uint16_t parseOption, std::uint16_t isAggregated,
                std::uint16_t xmlType, std::string* outputXML, std::string* msg);
  int NfsParseFile(const char* fileName, std::uint16_t parseOption, std::uint16_t isAggregated,
                   std::uint16_t xmlType, std::string* outputXML, std::string* msg);
  int FtpParseFile(const char* fileName, std::uint16_t parseOption, std::uint16_t isAggregated,
                   std::uint16_t xmlType, std::string* outputXML, std::string* msg);

  // --- Batch parses --------------------------------------------------------------------------
  // Each call parses the next portion (`count` statements, 0 for no limit; `flag` bit 0 skips
  // waits, bit 1 binds, bit 2 keeps top-level statements only), writes the call-by-call XML of
  // that portion and answers "MORE" while the trace has more. A failure keeps the parser of
  // ParseFileEx but drops parser and transport of the FTP and file-share forms.
  // An FTP batch holds its FTP session between calls, and a thread has one FTP session at a
  // time: until the batch ends or is dropped, every other FTP method on the thread fails with
  // "FTP failed to initialize!".
  int ParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                  std::string* outputXML, std::string* msg);
  int NfsParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                     std::string* outputXML, std::string* msg);
  int FtpParseFileEx(const char* fileName, std::uint16_t count, std::uint16_t flag,
                     std::string* outputXML, std::string* msg);

  // --- Listings and files ---------------------------------------------------------------------
  // The trace files of the trace directory ("*.trc"), style 0 names, 1 long, into the listing
  // file of the transport in the working directory.
  int NfsGetTraceFileList(std::uint16_t listStyle, std::string* msg);
  int FtpGetTraceFileList(std::uint16_t listStyle, std::string* msg);
  // Copies the named trace file into the working directory. The file-share copy is not
  // checked: a failed copy still answers "OK".
  int NfsGetTraceFile(const char* fileName, std::string* msg);
  int FtpGetTraceFile(const char* fileName, std::string* msg);
  // Finds the trace file of server process `PID`: `fname` and the object's trace file name
  // receive its name, the start offset its size; `contents` other than 0 also copies it.
  int NfsGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                         std::string* msg);
  int FtpGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                         std::string* msg);
  // The long listing of the trace files whose names contain `PID`.
  int NfsGetTraceFileListPID(const char* PID, std::string* msg);
  int FtpGetTraceFileListPID(const char* PID, std::string* msg);

  // --- Session validation and start-up ---------------------------------------------------------
  // Prove that the transport finds the trace file of `PID`; remember the file, its size as the
  // start offset and the transport. The stored connection data are not changed.
  // UTL: `oracleHandle` is the host's OCI service context (0: log on with username, password
  // and dsn), `ver` its release (92 is 9.2); the process is `PID`, or when that is empty the
  // one serving session `sid` ("SID,SERIAL#"). `udump` must be given but the package reads the
  // server's own user_dump_dest.
  int NfsValidation(const char* udump, const char* PID, std::string* msg);
  int FtpValidation(const char* hostname, const char* username, const char* password,
                    const char* udump, const char* PID, std::string* msg);
  int UtlValidation(std::uint64_t oracleHandle, std::uint16_t ver, const char* username,
                    const char* password, const char* dsn, const char* udump, const char* sid,
                    const char* PID, std::string* msg);
  // As the validations, but the connection data are stored, and `outputXML` receives the XML
  // name of the trace file. Nothing is downloaded or parsed.
  int ZantivNfsTrcStartUp(const char* udump, const char* PID, std::string* outputXML,
                          std::string* msg);
  int ZantivFtpTrcStartUp(const char* hostname, const char* username, const char* password,
                          const char* udump, const char* PID, std::string* outputXML,
                          std::string* msg);
  int ZantivUtlTrcStartUp(std::uint64_t oracleHandle, std::uint16_t ver, const char* username,
                          const char* password, const char* dsn, const char* udump, const char* sid,
                          const char* PID, const char* marker, std::string* outputXML,
                          std::string* msg);
  // Parses the remembered trace file from the start offset through the remembered transport
  // (UTL: from the line after the one holding the start-up's `marker`) and writes the sorted
  // XML of the one statement whose SQL text holds `statement_id`.
  // Before any validation or start-up it does nothing and answers "OK".
  int ZantivGetTraceInfo(const char* statement_id, const char* OraVer, std::string* msg);

  // --- SFTP, beyond the 25 methods --------------------------------------------------------
  // As their FTP counterparts, over SSH's file protocol; the listing file is
  // "SftpTraceFileList.txt" and the lookup follows the file share's rule. In a build without
  // libssh each fails with "SFTP is not available in this build (it was built without
  // libssh)". SftpSetConnectInfo stores the texts (missing ones read as empty; `password`
  // may be, when a key logs on) and contacts nothing; `acceptNewHostKey` other than 0 trusts
  // and records the key of a server the known-hosts file does not know.
  int SftpSetConnectInfo(const char* hostname, const char* username, const char* password,
                         const char* udump, const char* identityFile, const char* knownHostsFile,
                         std::uint16_t acceptNewHostKey, std::string* msg);
  int SftpGetTraceFileList(std::uint16_t listStyle, std::string* msg);
  int SftpGetTraceFile(const char* fileName, std::string* msg);
  int SftpGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                          std::string* msg);
  int SftpParseFile(const char* fileName, std::uint16_t parseOption, std::uint16_t isAggregated,
                    std::uint16_t xmlType, std::string* outputXML, std::string* msg);

  // --- FTP over TLS, beyond the 25 methods --------------------------------------------------
  // `useTls` other than 0 makes every FTP method of the object use FTP over TLS: the control
  // connection is secured before the user name and password go out (a server that refuses
  // fails the method, with nothing sent in clear text), and so is every data connection. The
  // server's certificate is checked against `caFile` (PEM; missing or "": the system's trust
  // store) and the host name; `insecure` other than 0 accepts any certificate. 0 goes back to
  // plain FTP, the default. In a build without OpenSSL, switching it on fails with "FTP over
  // TLS is not available in this build (it was built without OpenSSL)".
  int SetFtpTls(std::uint16_t useTls, const char* caFile, std::uint16_t insecure, std::string* msg);

  // --- State, for tests and diagnostics -------------------------------------------------------
  const std::string& WorkingDir() const { return working_dir_; }
  const transport::FtpConnectInfo& FtpInfo() const { return ftp_info_; }
  const transport::NfsConnectInfo& NfsInfo() const { return nfs_info_; }
  const UtlConnectInfo& UtlInfo() const { return utl_info_; }
  const parser::SortOptions* SortOptionsRecord() const { return sort_options_.get(); }
  const parser::CTraceParser* BatchParser() const { return batch_parser_.get(); }
  bool HasFtpStream() const { return ftp_stream_ != nullptr; }
  bool HasShareStream() const { return nfs_stream_ != nullptr; }
  std::uint32_t StartOffset() const { return start_offset_; }
  const std::string& TraceFileName() const { return trace_file_name_; }
  TransportKind Transport() const { return transport_kind_; }
  const std::string& Marker() const { return marker_; }

 private:
  // working directory + separator: where downloads, listings and XML files go.
  std::string LocalPath(const std::string& name) const;
  // udump of the file-share record + separator + name.
  std::string SharePath(const std::string& name) const;

  // The whole-file parse shared by the three forms; `parse` reads the trace into the parser.
  using ParseStep = std::function<void(parser::CTraceParser&)>;
  void ParseWholeTrace(const std::string& file_name, std::uint16_t isAggregated,
                       std::uint16_t xmlType, std::string* outputXML, const ParseStep& parse);
  void StreamCallDocument(parser::CTraceParser& parser, const std::string& file_name,
                          std::uint16_t xmlType, const ParseStep& parse);
  std::unique_ptr<transport::CNfsManager> MakeShareManager() const;
  // Gives a new manager the stored record and the working directory, and logs it on.
  void ConnectFtp(transport::CFtpManager& manager) const;
  // Gives a new manager the object's FTP over TLS setting.
  void ApplyFtpTls(transport::CFtpManager& manager) const;

  // Batch state.
  void StartBatchParser();
  // Writes the portion just parsed and forgets its statements; "MORE" or "OK".
  const char* FinishBatchPortion(const std::string& file_name, bool more);
  // A batch parser and a logged-on manager with the data stream of `file_name` open.
  void StartFtpBatch(const std::string& file_name);
  void DropShareBatch();
  // Closes the data stream and the session of an FTP batch, then releases both with the
  // parser. A finished batch reports a failed close; an abandoned one does not (a server
  // answers 426 to a transfer cut short).
  enum class FtpBatchEnd { kFinished, kAbandoned };
  void DropFtpBatch(FtpBatchEnd end);
  // ZantivGetTraceInfo's reading of the session's trace file over FTP and UTL.
  void ParseSessionTraceOverFtp(parser::CTraceParser& parser);
  void ParseSessionTraceOverUtl(parser::CTraceParser& parser);

  transport::FtpConnectInfo ftp_info_;
  transport::NfsConnectInfo nfs_info_;
  UtlConnectInfo utl_info_;
  std::unique_ptr<transport::CFtpManager> ftp_stream_;  // during an FTP batch parse
  std::unique_ptr<transport::CNfsManager> nfs_stream_;  // during a file-share batch parse
  SftpSettings sftp_settings_;
  bool ftp_tls_ = false;
  transport::TlsOptions ftp_tls_options_;
  std::unique_ptr<parser::SortOptions> sort_options_;   // null until SetSortOption
  std::unique_ptr<parser::CTraceParser> batch_parser_;  // during any batch parse
  std::string working_dir_;
  std::uint32_t start_offset_ = 0;
  std::string trace_file_name_;
  TransportKind transport_kind_ = kNoTransport;
  std::string marker_;
};

}  // namespace facade

#endif  // PELICOR_FACADE_PELICOR_H_
