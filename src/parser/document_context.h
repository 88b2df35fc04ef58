// What the writers need from the parser besides its closed statement list. The parser fills one
// of these per document; the writers only read it.
#ifndef PELICOR_PARSER_DOCUMENT_CONTEXT_H_
#define PELICOR_PARSER_DOCUMENT_CONTEXT_H_

#include <cstdint>
#include <string>

#include "parser/sort_options.h"

namespace parser {

struct DocumentContext {
  // The text behind "*** SESSION ID:(...) " as the trace line had it, line end included.
  std::string session_timestamp;
  // tim of the first PARSING IN CURSOR line the parser has seen.
  std::int64_t first_cursor_time = 0;
  // The parse flags: waits and binds were not scanned; only dep=0 statements are written.
  bool skip_waits = false;
  bool skip_binds = false;
  bool top_level_only = false;
  // Put in front of the call-by-call document's name as it stands: empty, or a directory that
  // ends in the platform's separator.
  std::string output_directory;
  // The parser's ticks per second as it holds them now (100 or 1000000); the text report
  // divides cpu and elapsed by it.
  std::int64_t time_divisor = 100;
  // The Oracle major version (from the database version, else from the trace's banner); the
  // aggregated documents divide by 100 below 9 and by 1000000 from 9 on.
  int oracle_major_version = 0;
  // The sorted document writes the statements whose SQL text contains this.
  std::string statement_id;
  // The caller's sort options, shown in the text report's header; null when none were given.
  const SortOptions* sort_options = nullptr;
};

}  // namespace parser

#endif  // PELICOR_PARSER_DOCUMENT_CONTEXT_H_
