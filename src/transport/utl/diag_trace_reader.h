// DiagTraceReader: a trace file read through SQL alone, for servers without the trace package.
// Oracle 12.2 and later show every file of the diagnostic trace directory in
// V$DIAG_TRACE_FILE_CONTENTS, one row per line; a session's file name is in V$PROCESS.TRACEFILE.
// SELECT on those views is all it needs.
//
// Failures are thrown as exceptions::ExceptionBase with file "DiagTraceReader" (Oracle errors as
// exceptions::OracleException). The session must outlive the reader.
#ifndef PELICOR_TRANSPORT_UTL_DIAG_TRACE_READER_H_
#define PELICOR_TRANSPORT_UTL_DIAG_TRACE_READER_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "parser/line_source.h"

namespace db {
class DBSession;
class Query;
}  // namespace db

namespace transport {

class DiagTraceReader : public parser::LineSource {
 public:
  explicit DiagTraceReader(db::DBSession& session);
  ~DiagTraceReader() override;
  DiagTraceReader(const DiagTraceReader&) = delete;
  DiagTraceReader& operator=(const DiagTraceReader&) = delete;

  // The name of the trace file of session `sid`,`serial` (without its directory). Throws
  // "No trace file found for session SID,SERIAL." when the server knows none.
  std::string SessionTraceFile(long sid, long serial);

  // --- parser::LineSource: the rows of `name` in line order, each ending in one "\n" ------------
  // Leaves out whole lines until `offset` bytes are passed. False when the view has no line of
  // `name`.
  bool OpenLines(const std::string& name, std::uint64_t offset) override;
  bool ReadNextLine(std::string_view* line) override;
  void CloseLines() override;

 private:
  // The longest payload and its NUL.
  static constexpr int kPayloadSize = 4001;
  static constexpr unsigned int kPrefetchRows = 1000;

  db::DBSession& session_;
  std::unique_ptr<db::Query> query_;
  std::string name_;  // bound while the query runs
  std::array<char, kPayloadSize> payload_{};
  short indicator_ = 0;
  bool row_pending_ = false;  // the execution fetched the first row
  std::string line_;
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_UTL_DIAG_TRACE_READER_H_
