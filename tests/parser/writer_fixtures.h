// Statements built in memory the way the parser files them, and a scratch directory, for the
// writer tests.
#ifndef PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_
#define PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_

#include <filesystem>
#include <memory>
#include <string>

#include "parser/trace_statement.h"

namespace writer_test {

using parser::TraceStatement;

// The file's whole content, bytes as they are.
std::string ReadFile(const std::filesystem::path& path);

// True when pugixml reads `document` without error; `error` gets its description otherwise.
bool IsWellFormed(const std::string& document, std::string* error);

// A fresh empty directory under the system's temporary directory, removed again at the end.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  const std::filesystem::path& path() const { return path_; }
  // The path of `name` in the directory, as a string.
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// Statements that cover every section of the documents:
//  1. cursor 1, dep 0: a parse, a bind, an exec, a fetch with every field missing, two STAT
//     rows, four waits; SQL with "<", "&" and "]]>", an address and values that need escaping.
//  2. a recursive statement (dep 1) reopened under cursor 7, its header still saying cursor 2;
//     no calls.
//  3. a parse error on cursor 3.
//  4. cursor 140736410372616 (an 11.2.0.2 address), one exec.
parser::StatementList SampleStatements();

// A statement with the given SQL text and, per kind, one call carrying `value` in every
// counter, so that its totals are easy to tell apart.
std::unique_ptr<TraceStatement> StatementWithTotals(const std::string& sql, std::int64_t parse,
                                                    std::int64_t exec, std::int64_t fetch);

}  // namespace writer_test

#endif  // PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_
