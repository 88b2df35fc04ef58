// Where the parser's stream forms pull lines from: the FTP transport's data stream or the
// database-side file reader. The parser knows nothing about transports beyond this.
#ifndef PELICOR_PARSER_LINE_SOURCE_H_
#define PELICOR_PARSER_LINE_SOURCE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace parser {

class LineSource {
 public:
  virtual ~LineSource() = default;
  // Opens `name` for reading from byte `offset`; false when it cannot be opened.
  virtual bool OpenLines(const std::string& name, std::uint64_t offset) = 0;
  // Opens `name` for reading after the one line that holds `marker` (the whole file when
  // `marker` is empty). Only the database-side reader can; the others answer false.
  virtual bool OpenLinesAfterMarker(const std::string& /*name*/, const std::string& /*marker*/) {
    return false;
  }
  // The next line, ending in one "\n", in *line; false at the end of the data. The text stays
  // valid until the next call.
  virtual bool ReadNextLine(std::string_view* line) = 0;
  virtual void CloseLines() = 0;
  // Up to `max_bytes` from the start of `name` into *head, for a parse that opens the lines
  // past the trace's header: the release banner there says how the rest is read. Asked before
  // OpenLines. False when the source cannot read them; the parse then goes on without. The
  // database-side reader, which reads the file from its start in any case, can hand out the
  // lines it passes on its way to the offset.
  virtual bool ReadHead(const std::string& /*name*/, std::uint64_t /*max_bytes*/,
                        std::string* /*head*/) {
    return false;
  }
};

}  // namespace parser

#endif  // PELICOR_PARSER_LINE_SOURCE_H_
