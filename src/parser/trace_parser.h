// CTraceParser turns one Oracle SQL trace into a table of statements: it reads the trace line
// by line (from a local file, a transport's line stream or the database-side file reader),
// hands each line to its dispatcher, and files what the scanners read under the statement of
// the line's cursor. Statements wait in the open list until their cursor is reused, a new trace
// section starts ("Oracle process number: 12") or the input ends, then move to the closed
// list, which the writers walk.
//
// Errors are thrown as exceptions::ExceptionBase with file "TraceParser"; lines that do not
// scan are ignored. A parser is used by one thread at a time; two parsers may run at once.
// The parser owns its statements; the views in WaitRecord::nam point into the parser too, so
// statements must not outlive it.
#ifndef PELICOR_PARSER_TRACE_PARSER_H_
#define PELICOR_PARSER_TRACE_PARSER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "parser/document_context.h"
#include "parser/line_kind.h"
#include "parser/line_scan.h"
#include "parser/line_source.h"
#include "parser/name_pool.h"
#include "parser/piece_reader.h"
#include "parser/records.h"
#include "parser/recursive_calls.h"
#include "parser/sort_options.h"
#include "parser/statement_table.h"
#include "parser/trace_statement.h"
#include "parser/wait_classes.h"

namespace parser {

// Bits of the flags argument of the batch forms.
inline constexpr std::uint8_t kSkipWaits = 1;
inline constexpr std::uint8_t kSkipBinds = 2;
inline constexpr std::uint8_t kTopLevelOnly = 4;

class CTraceParser {
 public:
  // `name` is the statement identifier; `version_text` the database version, read as
  // "%d.%d.%d.%d.%d" (numbers not reached stay 0).
  CTraceParser(std::string name, std::string_view version_text);
  // The parser of the whole-file parse methods: keeps the sort options (not owned, may be null)
  // and the aggregated flag (merge identical SQL); it has no name and no database version.
  explicit CTraceParser(const SortOptions* sort_options = nullptr, bool aggregated = false);
  virtual ~CTraceParser();
  CTraceParser(const CTraceParser&) = delete;
  CTraceParser& operator=(const CTraceParser&) = delete;

  // --- Parsing ---------------------------------------------------------------------------
  // The whole local file from byte `offset`; every statement is closed at the end. Throws
  // "Trace parser failed to open parse file!" / "...to move file cursor to offset!". From an
  // offset past 0 the release banner is first taken from the head of the file (see
  // TakeBannerFromHead).
  virtual void Parse(const std::string& file_name, std::uint64_t offset);
  // Parse with the flags of the batch forms (Parse clears them), for a whole-file parse that
  // leaves out waits or binds.
  void ParseFrom(const std::string& file_name, std::uint64_t offset, std::uint8_t flags);
  // The next portion of a local file, opened on the first call and kept open between calls:
  // parses until the closed list holds at least `limit` statements (0: no limit) or the file
  // ends. True while statements remain to be taken: with a limit, the statements still open at
  // the end are handed out up to it, call by call; without one (0) all of them at once, and
  // the answer is false. Throws "Trace parser failed to open parse file." when the file cannot
  // be opened.
  virtual bool ParseBatch(const std::string& file_name, std::uint16_t limit, std::uint8_t flags);
  // The whole stream of a transport: opens it with (name, offset), reads it to its end, closes
  // it, and closes every statement. From an offset past 0 the head of the trace is asked of the
  // source first, for its release banner.
  virtual void ParseStream(LineSource& source, const std::string& name, std::uint64_t offset);
  // ParseStream with the flags of the batch forms.
  void ParseStreamFrom(LineSource& source, const std::string& name, std::uint64_t offset,
                       std::uint8_t flags);
  // The next portion of a transport stream that the caller has opened (and will close), as
  // ParseBatch does for a file. `source` is used during the call only.
  virtual bool ParseStreamBatch(LineSource& source, const std::string& name, std::uint16_t limit,
                                std::uint8_t flags);
  // The whole file through the database-side reader, as ParseStream, from the line after the
  // one that holds `marker` (the host wrote it into the trace when it started its work).
  virtual void ParseDatabaseReader(LineSource& reader, const std::string& name,
                                   const std::string& marker);

  // Takes each closed statement that no later line can reach, in closing order, during a
  // whole-input parse (Parse, ParseFrom, ParseStream...), once the session timestamp and the
  // first cursor time are known; a statement the handler takes (it answers true) leaves the
  // closed list, and is destroyed when the call returns unless the handler moved it out of the
  // pointer it was given (it may then outlive the call, but not the parser: its wait names view
  // the parser's name pool). A handler that answers false keeps that statement, and every later
  // one, in the closed list for the rest of the parse, as if it had never been set. Those still
  // closed at the end of the parse stay in the closed list. Not while merging identical SQL (a
  // closed statement may be continued) nor in batches. A closed statement stays reachable while
  // it is the cached statement of its cursor. For a call document written as the trace is
  // read, whose memory then stays flat whatever the trace's size. Null: keep all (default).
  using ClosedStatementHandler = std::function<bool(std::unique_ptr<TraceStatement>& statement)>;
  void SetClosedStatementHandler(ClosedStatementHandler handler) {
    closed_handler_ = std::move(handler);
  }

  // How a whole local file is read: by `workers` threads that split and scan it ahead in chunks
  // of `chunk_bytes` while the parser works (chunked_file_reader.h), when the part to read has at
  // least `min_bytes`; otherwise, or with no worker, on the parser's thread alone. The output is
  // the same either way. By default one worker per processor (at most four), none on one.
  struct ReadAhead {
    unsigned workers = DefaultWorkers();
    std::size_t chunk_bytes = std::size_t{512} << 10;
    std::uint64_t min_bytes = std::uint64_t{8} << 20;
    static unsigned DefaultWorkers();
  };
  void SetReadAhead(const ReadAhead& read_ahead) { read_ahead_ = read_ahead; }

  // Called with the number of bytes of a local file read so far, once for each block read.
  using ProgressCallback = std::function<void(std::uint64_t bytes_read)>;
  void SetProgressCallback(ProgressCallback callback) { progress_ = std::move(callback); }

  // Takes the release banner (and a "Version" line) from `head`, the first bytes of a trace
  // whose parse starts past them, up to the end of its header (the first "***" or "=====" line
  // or record); the rest of `head` is not read. Whole lines only.
  void TakeBannerFromHead(std::string_view head);
  // The most bytes of a trace's head that a parse from an offset reads for its banner.
  static constexpr std::uint64_t kHeadBytes = 16 * 1024;

  // Hands one line to the scanner of its kind. Scanners that read further lines (SQL text,
  // BINDS blocks) take them from the source of the parse in progress, if any.
  virtual void DispatchLine(std::string_view line);

  // --- Statement table -------------------------------------------------------------------
  virtual TraceStatement* StatementForCursor(CursorNo cursor);
  virtual void CloseCursor(CursorNo cursor);
  // Closes up to n open statements, oldest first; returns how many stay open.
  virtual std::size_t CloseFirst(std::int64_t n);
  virtual void CloseAll();
  // Moves the first closed statement with this header SQL text back to the open list.
  virtual TraceStatement* ReopenBySqlText(std::string_view text);
  // Destroys the closed statements (each batch writes only its own).
  virtual void ClearClosedStatements();

  StatementList& ClosedStatements() { return table_.closed(); }
  const StatementList& ClosedStatements() const { return table_.closed(); }
  const StatementList& OpenStatements() const { return table_.open(); }

  // --- Output ------------------------------------------------------------------------------
  // The call-by-call document of the closed statements, next to `file_name` with the extension
  // xml, in the output directory. Throws "Trace parser failed to create output XML file!".
  virtual void CreateXML(std::string file_name);
  // The aggregated document of every closed statement; sets the time divisor from the Oracle
  // major version (the database version's, else the banner's).
  virtual void CreateTkprofXML(std::string file_name);
  // The aggregated document of the statements whose SQL text holds the statement identifier;
  // exactly one must match.
  virtual void CreateSortedXML(std::string file_name);
  // Puts the closed statements in order by the sort options; nothing without options.
  virtual void SortClosedStatements();
  // The TKPROF-style text report of the closed statements (standard output by default).
  virtual void WriteTextReport(std::ostream& out);
  virtual void WriteTextReport();
  // `text` with &, <, > and " replaced by their entities.
  virtual std::string EscapeXml(std::string_view text) const;
  // What the writers read besides the closed statements.
  DocumentContext MakeDocumentContext() const;

  // --- Settings and state for the writers and the facade -----------------------------------
  // Kept with the platform's path separator appended.
  void SetOutputDirectory(const std::string& directory);
  const std::string& OutputDirectory() const { return output_directory_; }
  void SetStatementId(std::string id) { name_ = std::move(id); }
  const std::string& StatementId() const { return name_; }
  void SetSortOptions(const SortOptions* options) { sort_options_ = options; }
  const SortOptions* GetSortOptions() const { return sort_options_; }
  // The aggregated flag of the parse methods is TKPROF's aggregate=yes: merge identical SQL.
  void SetAggregated(bool aggregated) { merge_identical_sql_ = aggregated; }
  bool IsAggregated() const { return merge_identical_sql_; }
  // Summary only: statements keep what the aggregated documents, the sort step and the text
  // report read (totals, the first PARSE's mis, the first EXEC's og, wait sums per class, STAT
  // rows, SQL text) and no call, bind or wait records, which the call-by-call document would
  // need. A trace then takes a fraction of the memory. Off by default.
  void SetSummaryOnly(bool summary_only) { summary_only_ = summary_only; }
  bool SummaryOnly() const { return summary_only_; }
  void SetMergeIdenticalSql(bool merge) { merge_identical_sql_ = merge; }
  bool MergeIdenticalSql() const { return merge_identical_sql_; }
  // Reads "%d.%d.%d.%d.%d"; numbers not reached keep their values.
  void SetVersion(std::string_view version_text);
  bool HasVersion() const { return has_version_; }
  const std::array<std::int16_t, 5>& Version() const { return version_; }

  const std::string& SessionTimestamp() const { return session_timestamp_; }
  std::int64_t FirstCursorTime() const { return first_cursor_time_; }
  bool SkipWaits() const { return skip_waits_; }
  bool SkipBinds() const { return skip_binds_; }
  bool TopLevelOnly() const { return top_level_only_; }
  std::int64_t TimeDivisor() const { return time_divisor_; }
  char ReleaseCharacter() const { return release_char_; }
  // The major version of the last release banner seen ("Oracle9i ... Release 9.2.0.4.0" gives
  // 9, "Oracle Database 19c ... Release 19.0.0.0.0" 19), 0 before any, kNewerFormsVersion when
  // only the line forms told the release.
  int BannerMajorVersion() const { return banner_major_version_; }
  // What the aggregated writers of a parser without a database version take: the banner's major
  // version; without any banner, kMicrosecondClockVersion when a tim of 13 digits or more was
  // seen (the microsecond clock of 9i and later: tim=1083929217641969), else 0.
  int MajorVersionForWriters() const;
  static constexpr int kMicrosecondClockVersion = 9;
  // True when the trace was written by Oracle 10g or later: an "Oracle Database ..." banner or a
  // "Version 19.x" line said so, or, with no banner at all, a line form that only those releases
  // write (plan hashes on calls, CLOSE lines, WAIT lines with their own tim, Bind#n blocks,
  // sqlid). Such traces are read in microseconds, their SQL text ends at END OF STMT, each
  // call is counted in the totals without the figures of its recursive calls, as TKPROF does,
  // and only Oracle's own size-limit line ends the parse. An 8i/9i banner ("Oracle9i ...")
  // settles the question for good: no later line makes the trace a newer one.
  bool NewerForms() const { return newer_forms_; }
  // The major version assumed for a trace without a banner whose line forms are 10g's or later.
  static constexpr int kNewerFormsVersion = 10;
  const std::string& TraceFileName() const { return trace_file_name_; }

 protected:
  enum class SourceMode { kFile = 0, kStream = 1, kDatabaseReader = 3 };

  // The next line of the parse's source (cut at its first NUL byte); false at its end. Throws
  // "Trace file has reached max_dump_file_size!" for the server's size-limit line.
  virtual bool NextLine(std::string_view* line);
  // The line readers cut the line at its first NUL byte and set line_may_mark_limit_ (false
  // only when the line surely is no size-limit line).
  virtual bool ReadDatabaseLine(std::string_view* line);
  virtual bool ReadStreamLine(std::string_view* line);
  virtual bool ReadFileLine(std::string_view* line);

  // The eight scanners: each reads its line (and the lines that belong to it) and files the
  // records under the statement of the line's cursor.
  virtual void ScanParsingInCursor(std::string_view line);
  virtual void ScanParse(std::string_view line);
  virtual void ScanExec(std::string_view line);
  virtual void ScanFetch(std::string_view line);
  virtual void ScanStat(std::string_view line);
  virtual void ScanBinds(std::string_view line);
  virtual void ScanWait(std::string_view line);
  virtual void ScanParseError(std::string_view line);
  // The scanners of the lines that Oracle 10g and later added.
  virtual void ScanClose(std::string_view line);
  virtual void ScanXctend(std::string_view line);

 private:
  // Hands the line to its scanner; true when a BINDS block of the 10g+ layout ended at a line
  // that is now in line_buffer_, to be dispatched in its turn.
  bool DispatchOnce(std::string_view line);
  void TakeSessionTimestamp(std::string_view line);
  // Notes a call's or cursor's tim for MajorVersionForWriters.
  void NoteTim(std::int64_t tim);
  // The size-limit test of the trace's form: see NewerForms.
  bool MarksSizeLimit(std::string_view line) const;
  // Reads the head of a local file (or asks the source for it) for a parse from `offset`.
  void TakeBannerFromFileHead(const std::string& file_name, std::uint64_t offset);
  void TakeBannerFromSourceHead(LineSource& source, const std::string& name, std::uint64_t offset);
  void ParseSource(LineSource& source, SourceMode mode, const std::string& name,
                   std::uint64_t offset, std::uint8_t flags);
  // Parses to the end of a source that is open already.
  void ReadOpenedSource(LineSource& source, SourceMode mode, std::uint8_t flags);
  // What a batch call answers once the input has ended: see ParseBatch.
  bool CloseAfterEnd(std::int64_t n, std::uint16_t limit);
  void TakeRelease(std::string_view line);
  // "Oracle Database 19c ... Release 19.0.0.0.0 - Production" and "Version 19.14.2.0.0": the
  // major version starts at `version`.
  void TakeNewerRelease(std::string_view version);
  // A line form of 10g or later was seen: without any banner, the trace is read as such.
  void NoteNewerForm();
  // The figures a call adds to its statement's totals (see NewerForms).
  CallRecord CountedFigures(const CallRecord& call);
  // Appends lines to `text` until it holds at least len - 2 characters or the input ends; for
  // PARSING IN CURSOR in a newer trace also at an END OF STMT line, which is consumed.
  void ReadSqlText(std::int32_t len, std::string* text, bool until_end_of_statement);
  void FileCursorHeader(ParseInCursorRecord header);
  // Reads one bind of a BINDS block from its definition line on; see ScanBinds.
  bool ReadBind(std::string_view* line, BindRecord* bind);
  // The rest of a BINDS block in the 10g+ layout, from its first line after "BINDS #n:".
  void ReadNewerBinds(TraceStatement* statement, CursorNo cursor, std::int32_t bind_set,
                      std::string_view line);
  void SetFlags(std::uint8_t flags);
  // Opens the whole-file reader of a parse from `offset` (see ReadAhead); closes it, with the
  // pieces in hand.
  void OpenFileReader(const std::string& file_name, std::uint64_t offset);
  void CloseFileReader();
  // What the file reader scanned ahead for `line`, when it is the piece in hand; else null.
  const LineScan* ScannedAhead(std::string_view line, LineKind kind) const;
  // Steps over the next `count` pieces of the run in hand, which the reader has found to hold
  // nothing the parse keeps and no size-limit line.
  void SkipPieces(std::size_t count);
  // Reads a PARSE, EXEC or FETCH line (`kind`): true when it had a plan hash.
  bool ScanCall(std::string_view line, LineKind kind, CallRecord* call) const;
  // Hands the closed statements that are final to closed_handler_ (see its setter).
  void HandOverClosed();
  // Files a wait under `statement`: its record, or in a summary-only parse its ela in the sum of
  // its class.
  void FileWait(TraceStatement& statement, WaitRecord& wait);
  WaitClass ClassOfInterned(std::string_view name);
  bool SourceAtEnd() const;
  // Whole-input forms: reads to the end of the source, then closes every statement.
  void ParseToEnd();
  // Batch forms: reads until the statement limit is reached or the source ends.
  bool ParseNextBatch(std::uint16_t limit, std::uint8_t flags);
  void EndOfInput();

  StatementTable table_;
  std::unique_ptr<PieceReader> file_;
  PieceRun run_;                  // the pieces of file_ in hand
  std::size_t run_next_ = 0;      // the next of them
  const Piece* piece_ = nullptr;  // the one last read
  ReadAhead read_ahead_;
  SourceMode source_mode_ = SourceMode::kFile;
  bool merge_identical_sql_ = false;
  LineSource* stream_ = nullptr;  // during a stream or database-reader parse only
  bool stream_at_end_ = false;
  char release_char_ = '8';
  std::int64_t time_divisor_ = 100;
  std::int64_t current_time_ = 0;
  std::string session_timestamp_;
  bool session_timestamp_taken_ = false;
  bool stop_ = false;
  std::int64_t statement_limit_ = 0;
  std::int64_t first_cursor_time_ = 0;
  bool first_cursor_time_pending_ = true;
  bool input_exhausted_ = false;
  bool skip_waits_ = false;
  bool skip_binds_ = false;
  bool top_level_only_ = false;
  std::string name_;
  std::array<std::int16_t, 5> version_{};
  bool has_version_ = false;
  std::string trace_file_name_;
  std::string output_directory_;
  const SortOptions* sort_options_ = nullptr;
  int banner_major_version_ = 0;
  bool release_seen_ = false;   // some banner or Version line, older or newer
  bool older_banner_ = false;   // an 8i/9i banner: the trace's form is settled
  bool long_tim_seen_ = false;  // a tim of 13 digits or more (see MajorVersionForWriters)
  bool newer_forms_ = false;
  RecursiveCalls recursive_calls_;
  bool hand_back_ = false;  // see DispatchOnce
  // The line in hand: what the BINDS scanner leaves for the dispatcher's EXEC follow-up.
  std::string_view line_buffer_;
  bool line_may_mark_limit_ = true;
  NamePool wait_names_;
  bool summary_only_ = false;
  // The class of each interned wait name, by the address of the pool's copy.
  std::unordered_map<const char*, WaitClass> wait_classes_;
  const char* last_wait_name_ = nullptr;
  WaitClass last_wait_class_ = kOther;
  ProgressCallback progress_;
  ClosedStatementHandler closed_handler_;
  std::uint64_t reported_position_ = 0;
};

}  // namespace parser

#endif  // PELICOR_PARSER_TRACE_PARSER_H_
