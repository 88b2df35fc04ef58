// CTraceParser: construction, settings, the parse forms and the line source.
#include "parser/trace_parser.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "parser/chunked_file_reader.h"
#include "parser/field_scanner.h"
#include "parser/line_text.h"
#include "parser/record_scanners.h"
#include "parser/trace_file_reader.h"
#include "support/exceptions.h"

namespace parser {

namespace {

#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

[[noreturn]] void Raise(const char* method, const char* message) {
  throw exceptions::ExceptionBase("TraceParser", "CTraceParser::Parse", method, message);
}

// Lets go of a stream source when a stream parse ends, also by an exception.
class StreamScope {
 public:
  StreamScope(LineSource** slot, LineSource* source, bool close)
      : slot_(slot), source_(source), close_(close) {
    *slot_ = source;
  }
  ~StreamScope() {
    *slot_ = nullptr;
    if (close_) source_->CloseLines();
  }
  StreamScope(const StreamScope&) = delete;
  StreamScope& operator=(const StreamScope&) = delete;

 private:
  LineSource** slot_;
  LineSource* source_;
  bool close_;
};

}  // namespace

CTraceParser::CTraceParser(std::string name, std::string_view version_text)
    : name_(std::move(name)) {
  SetVersion(version_text);
}

CTraceParser::CTraceParser(const SortOptions* sort_options, bool aggregated)
    : merge_identical_sql_(aggregated), sort_options_(sort_options) {}

CTraceParser::~CTraceParser() = default;

void CTraceParser::SetOutputDirectory(const std::string& directory) {
  output_directory_ = directory + kPathSeparator;
}

void CTraceParser::SetVersion(std::string_view version_text) {
  std::array<std::int32_t, 5> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = version_[i];
  FieldScanner(version_text)
      .Int32(&numbers[0])
      .Literal(".")
      .Int32(&numbers[1])
      .Literal(".")
      .Int32(&numbers[2])
      .Literal(".")
      .Int32(&numbers[3])
      .Literal(".")
      .Int32(&numbers[4]);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    version_[i] = static_cast<std::int16_t>(numbers[i]);
  }
  has_version_ = true;
}

void CTraceParser::SetFlags(std::uint8_t flags) {
  skip_waits_ = (flags & kSkipWaits) != 0;
  skip_binds_ = (flags & kSkipBinds) != 0;
  top_level_only_ = (flags & kTopLevelOnly) != 0;
}

// --- Parse forms ----------------------------------------------------------------------------

void CTraceParser::Parse(const std::string& file_name, std::uint64_t offset) {
  ParseFrom(file_name, offset, 0);
}

void CTraceParser::ParseFrom(const std::string& file_name, std::uint64_t offset,
                             std::uint8_t flags) {
  trace_file_name_ = file_name;
  OpenFileReader(file_name, offset);
  TakeBannerFromFileHead(file_name, offset);
  source_mode_ = SourceMode::kFile;
  SetFlags(flags);
  ParseToEnd();
}

void CTraceParser::ParseStream(LineSource& source, const std::string& name, std::uint64_t offset) {
  ParseSource(source, SourceMode::kStream, name, offset, 0);
}

void CTraceParser::ParseStreamFrom(LineSource& source, const std::string& name,
                                   std::uint64_t offset, std::uint8_t flags) {
  ParseSource(source, SourceMode::kStream, name, offset, flags);
}

void CTraceParser::ParseDatabaseReader(LineSource& reader, const std::string& name,
                                       const std::string& marker) {
  trace_file_name_ = name;
  // The package starts reading after the marker line: no head can be had this way, so the
  // release comes from the tim values alone.
  if (!reader.OpenLinesAfterMarker(name, marker))
    Raise("OpenLines", "Trace parser failed to open parse file!");
  ReadOpenedSource(reader, SourceMode::kDatabaseReader, 0);
}

unsigned CTraceParser::ReadAhead::DefaultWorkers() {
  const unsigned processors = std::thread::hardware_concurrency();
  return processors < 2 ? 0 : std::min(processors, 4u);
}

void CTraceParser::CloseFileReader() {
  file_.reset();
  run_ = PieceRun();
  run_next_ = 0;
  piece_ = nullptr;
}

void CTraceParser::OpenFileReader(const std::string& file_name, std::uint64_t offset) {
  CloseFileReader();
  std::unique_ptr<TraceFileReader> reader = TraceFileReader::Open(file_name);
  if (!reader) Raise("fopen", "Trace parser failed to open parse file!");
  if (!reader->Seek(offset)) Raise("fopen", "Trace parser failed to move file cursor to offset!");
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file_name, error);
  if (read_ahead_.workers == 0 || error || size < offset || size - offset < read_ahead_.min_bytes) {
    file_ = std::move(reader);
    return;
  }
  file_ = std::make_unique<ChunkedFileReader>(
      file_name, offset, ChunkedFileReader::Options{read_ahead_.workers, read_ahead_.chunk_bytes});
}

// The head is asked for before the stream opens: an FTP session carries one transfer at a time.
void CTraceParser::ParseSource(LineSource& source, SourceMode mode, const std::string& name,
                               std::uint64_t offset, std::uint8_t flags) {
  trace_file_name_ = name;
  TakeBannerFromSourceHead(source, name, offset);
  if (!source.OpenLines(name, offset))
    Raise("OpenLines", "Trace parser failed to open parse file!");
  ReadOpenedSource(source, mode, flags);
}

void CTraceParser::ReadOpenedSource(LineSource& source, SourceMode mode, std::uint8_t flags) {
  const StreamScope scope(&stream_, &source, true);
  source_mode_ = mode;
  stream_at_end_ = false;
  SetFlags(flags);
  ParseToEnd();
}

bool CTraceParser::ParseBatch(const std::string& file_name, std::uint16_t limit,
                              std::uint8_t flags) {
  trace_file_name_ = file_name;
  if (input_exhausted_) return CloseAfterEnd(limit, limit);
  if (!file_) {
    file_ = TraceFileReader::Open(file_name);
    if (!file_) Raise("fopen", "Trace parser failed to open parse file.");
  }
  source_mode_ = SourceMode::kFile;
  return ParseNextBatch(limit, flags);
}

bool CTraceParser::ParseStreamBatch(LineSource& source, const std::string& name,
                                    std::uint16_t limit, std::uint8_t flags) {
  trace_file_name_ = name;
  if (input_exhausted_) return CloseAfterEnd(limit, limit);
  const StreamScope scope(&stream_, &source, false);
  source_mode_ = SourceMode::kStream;
  stream_at_end_ = false;  // a batch stream that had ended would have exhausted the input
  return ParseNextBatch(limit, flags);
}

void CTraceParser::ParseToEnd() {
  std::string_view line;
  while (!SourceAtEnd() && NextLine(&line)) DispatchLine(line);
  EndOfInput();
  CloseAll();
}

bool CTraceParser::ParseNextBatch(std::uint16_t limit, std::uint8_t flags) {
  statement_limit_ = limit;
  SetFlags(flags);
  stop_ = false;
  std::string_view line;
  while (!SourceAtEnd() && !stop_) {
    if (!NextLine(&line)) break;
    DispatchLine(line);
  }
  if (!SourceAtEnd()) return true;
  EndOfInput();
  input_exhausted_ = true;
  const auto closed = static_cast<std::int64_t>(std::as_const(table_).closed().size());
  return CloseAfterEnd(std::int64_t{limit} - closed, limit);
}

// With a limit, the first n open statements close and the answer is whether any stay open, so
// a host that loops on "MORE" gets them a portion at a time. Without a limit that arithmetic
// would close none and answer "MORE" for ever: every statement closes and the parse is done.
bool CTraceParser::CloseAfterEnd(std::int64_t n, std::uint16_t limit) {
  if (limit == 0) {
    CloseAll();
    return false;
  }
  return CloseFirst(n) > 0;
}

void CTraceParser::EndOfInput() {
  CloseFileReader();
  session_timestamp_taken_ = false;
}

// --- Line source ----------------------------------------------------------------------------

bool CTraceParser::SourceAtEnd() const {
  if (source_mode_ == SourceMode::kFile)
    return !file_ || (run_next_ == run_.count && file_->AtEnd());
  return stream_at_end_;
}

bool CTraceParser::NextLine(std::string_view* line) {
  bool got = false;
  switch (source_mode_) {
    case SourceMode::kFile:
      got = ReadFileLine(line);
      break;
    case SourceMode::kStream:
      got = ReadStreamLine(line);
      break;
    case SourceMode::kDatabaseReader:
      got = ReadDatabaseLine(line);
      break;
  }
  if (!got) return false;
  line_buffer_ = *line;
  if (line_may_mark_limit_ && MarksSizeLimit(*line)) {
    Raise("Parse", "Trace file has reached max_dump_file_size!");
  }
  return true;
}

bool CTraceParser::MarksSizeLimit(std::string_view line) const {
  return newer_forms_ ? IsDumpSizeLimitLine(line) : IsSizeLimitLine(line);
}

bool CTraceParser::ReadFileLine(std::string_view* line) {
  if (run_next_ == run_.count) {
    piece_ = nullptr;
    run_next_ = 0;
    if (file_ == nullptr || !file_->NextRun(&run_)) {
      run_ = PieceRun();
      return false;
    }
    if (progress_ && file_->ReadPosition() != reported_position_) {
      reported_position_ = file_->ReadPosition();
      progress_(reported_position_);
    }
  }
  piece_ = &run_.pieces[run_next_++];
  *line = piece_->text();
  line_may_mark_limit_ = piece_->asterisks;
  return true;
}

const LineScan* CTraceParser::ScannedAhead(std::string_view line, LineKind kind) const {
  if (source_mode_ != SourceMode::kFile || piece_ == nullptr || piece_->scan < 0 ||
      !piece_->Is(line)) {
    return nullptr;
  }
  const LineScan& scan = run_.scans[piece_->scan];
  return scan.kind == kind ? &scan : nullptr;
}

void CTraceParser::SkipPieces(std::size_t count) {
  if (count == 0) return;
  run_next_ += count;
  piece_ = &run_.pieces[run_next_ - 1];
}

bool CTraceParser::ScanCall(std::string_view line, LineKind kind, CallRecord* call) const {
  if (const LineScan* ahead = ScannedAhead(line, kind)) {
    *call = ahead->fields.call;
    return ahead->newer_form;
  }
  return ScanCallLine(line, CallKeyword(kind), call);
}

bool CTraceParser::ReadStreamLine(std::string_view* line) {
  if (stream_ == nullptr || stream_at_end_) return false;
  if (!stream_->ReadNextLine(line)) {
    stream_at_end_ = true;
    return false;
  }
  *line = UpToNul(*line);
  line_may_mark_limit_ = true;
  return true;
}

bool CTraceParser::ReadDatabaseLine(std::string_view* line) {
  return ReadStreamLine(line);
}

// --- Statement table ------------------------------------------------------------------------

TraceStatement* CTraceParser::StatementForCursor(CursorNo cursor) {
  return table_.ForCursor(cursor);
}

void CTraceParser::CloseCursor(CursorNo cursor) {
  table_.CloseCursor(cursor);
}

std::size_t CTraceParser::CloseFirst(std::int64_t n) {
  return table_.CloseFirst(n);
}

void CTraceParser::CloseAll() {
  table_.CloseAll();
}

TraceStatement* CTraceParser::ReopenBySqlText(std::string_view text) {
  return table_.ReopenBySqlText(text);
}

void CTraceParser::ClearClosedStatements() {
  table_.ClearClosed();
}

}  // namespace parser
