// Helpers for the parser tests: trace text in a temporary file, a line source over strings,
// and the SQL texts of a statement list.
#ifndef PELICOR_TESTS_PARSER_PARSER_FIXTURE_H_
#define PELICOR_TESTS_PARSER_PARSER_FIXTURE_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "../support/scratch.h"
#include "parser/line_source.h"
#include "parser/trace_parser.h"

using pelicor_test::TempFile;

// A trace line source over lines held in memory, recording how it was driven.
class StringLineSource : public parser::LineSource {
 public:
  explicit StringLineSource(std::vector<std::string> lines, bool opens = true)
      : lines_(std::move(lines)), opens_(opens) {}
  bool OpenLines(const std::string& name, std::uint64_t offset) override {
    opened_name = name;
    opened_offset = offset;
    return opens_;
  }
  bool ReadNextLine(std::string_view* line) override {
    if (next_ == lines_.size()) return false;
    *line = lines_[next_++];
    return true;
  }
  void CloseLines() override { ++closes; }

  std::string opened_name;
  std::uint64_t opened_offset = 0;
  int closes = 0;

 private:
  std::vector<std::string> lines_;
  bool opens_;
  std::size_t next_ = 0;
};

// The SQL text of each statement, in list order.
inline std::vector<std::string> SqlTexts(const parser::StatementList& list) {
  std::vector<std::string> texts;
  for (const auto& statement : list) texts.push_back(statement->SqlText());
  return texts;
}

// A parser that has read `text` from a file.
inline std::unique_ptr<parser::CTraceParser> ParseText(const std::string& text) {
  const TempFile file(text);
  auto trace = std::make_unique<parser::CTraceParser>();
  trace->Parse(file.path(), 0);
  return trace;
}

// "=====" + PARSING IN CURSOR line + the SQL text + END OF STMT, with len matching the text.
inline std::string CursorBlock(int cursor, const std::string& sql, std::int64_t tim = 1000) {
  return "=====================\nPARSING IN CURSOR #" + std::to_string(cursor) +
         " len=" + std::to_string(sql.size()) +
         " dep=0 uid=5 oct=3 lid=5 tim=" + std::to_string(tim) + " hv=3918581285 ad='6b3d1f2c'\n" +
         sql + "\nEND OF STMT\n";
}

#endif  // PELICOR_TESTS_PARSER_PARSER_FIXTURE_H_
