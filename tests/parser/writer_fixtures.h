// Statements built in memory as the parser files them, and well-formed documents read back.
#ifndef PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_
#define PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_

#include <filesystem>
#include <memory>
#include <string>

#include "../support/scratch.h"
#include "parser/trace_statement.h"

namespace writer_test {

// Reads the file and checks with pugixml that it is well-formed XML (where pugixml is built).
std::string ReadXml(const std::filesystem::path& path);

// 1. cursor 1, dep 0: a parse, a bind, an exec, a fetch with every field missing, two STAT
//    rows, four waits; "<", "&", '"' and "]]>" where they need escaping or splitting.
// 2. a recursive statement reopened under cursor 7, its header still saying cursor 2; no calls.
// 3. a parse error on cursor 3.
// 4. cursor 140736410372616 (an 11.2.0.2 address) with one exec.
parser::StatementList SampleStatements();

// One parse, exec and fetch call carrying the given value in each counter (and mis).
std::unique_ptr<parser::TraceStatement> StatementWithTotals(const std::string& sql,
                                                            std::int64_t parse, std::int64_t exec,
                                                            std::int64_t fetch);

}  // namespace writer_test

#endif  // PELICOR_TESTS_PARSER_WRITER_FIXTURES_H_
