#include "parser/plan_tables.h"

#include <array>
#include <cstddef>

namespace parser {

namespace {

struct PlanRow {
  std::string_view name;
  int code;
};

constexpr std::array<PlanRow, 62> kOperations{{
    {"TABLE ACCESS", 0},
    {"AND-EQUAL", 1},
    {"INDEX", 2},
    {"CONNECT BY PUMP", 3},
    {"CONNECT BY", 4},
    {"MERGE JOIN", 5},
    {"HASH JOIN", 6},
    {"NESTED LOOPS", 7},
    {"CONCATENATION", 8},
    {"INTERSECTION", 9},
    {"MINUS", 10},
    {"UNION-ALL", 11},
    {"UNION", 12},
    {"VIEW PUSHED PREDICATE", 13},
    {"VIEW", 14},
    {"FOR UPDATE", 15},
    {"FILTER", 16},
    {"REMOTE", 17},
    {"SEQUENCE", 18},
    {"SORT", 19},
    {"COUNT", 20},
    {"SELECT STATEMENT", 21},
    {"INSERT STATEMENT", 22},
    {"UPDATE STATEMENT", 23},
    {"DELETE STATEMENT", 24},
    {"SELECT", 25},
    {"INSERT", 26},
    {"UPDATE", 27},
    {"DELETE", 28},
    {"FIXED TABLE", 29},
    {"BITMAP CONVERSION", 30},
    {"BITMAP INDEX", 31},
    {"PARTITION RANGE", 32},
    {"PARTITION HASH", 33},
    {"PARTITION", 34},
    {"BITMAP AND", 35},
    {"BITMAP OR", 36},
    {"BITMAP MERGE", 37},
    {"BITMAP KEY ITERATION", 38},
    {"FIRST ROW", 39},
    {"INLIST ITERATOR", 40},
    {"WINDOW", 41},
    {"TEMP TABLE GENERATION", 42},
    {"COLLECTION ITERATOR", 43},
    {"BUFFER", 44},
    {"GENERATE", 45},
    {"MERGE STATEMENT", 46},
    {"MERGE", 47},
    {"RECURSIVE EXECUTION", 48},
    {"MULTI-TABLE INSERT", 49},
    {"INTO", 50},
    {"CREATE TABLE STATEMENT", 51},
    {"LOAD AS SELECT", 52},
    {"BITMAP MINUS", 53},
    {"DOMAIN INDEX", 54},
    {"TEMP TABLE TRANSFORMATION", 55},
    {"DIRECT LOAD INTO", 56},
    {"PX ITERATOR", 57},
    {"PX COORDINATOR", 58},
    {"PX PARTITION", 59},
    {"PX RECEIVE", 60},
    {"PX SEND", 61},
}};

// Row 60 repeats "GROUP BY NOSORT" with code 20; row 20 always matches first.
constexpr std::array<PlanRow, 70> kOptions{{
    {"FULL SCAN (MIN/MAX)", 0},
    {"FULL SCAN", 1},
    {"FULL", 2},
    {"CLUSTER", 3},
    {"HASH", 4},
    {"BY ROWID RANGE", 5},
    {"BY ROWID", 6},
    {"UNIQUE SCAN", 7},
    {"RANGE SCAN DESCENDING", 8},
    {"RANGE SCAN (MIN/MAX)", 9},
    {"RANGE SCAN", 10},
    {"FAST FULL SCAN", 11},
    {"OUTER", 12},
    {"ORDER BY STOPKEY", 13},
    {"ORDER BY", 14},
    {"STOPKEY", 15},
    {"AGGREGATE", 16},
    {"JOIN", 17},
    {"UNIQUE NOSORT", 18},
    {"UNIQUE", 19},
    {"GROUP BY NOSORT", 20},
    {"GROUP BY STOPKEY", 21},
    {"GROUP BY ROLLUP", 22},
    {"GROUP BY", 23},
    {"CARTESIAN", 24},
    {"BY INDEX ROWID", 25},
    {"TO ROWIDS", 26},
    {"FROM ROWIDS", 27},
    {"SINGLE VALUE", 28},
    {"CONCATENATED", 29},
    {"BY LOCAL INDEX ROWID", 30},
    {"BUFFER", 31},
    {"SEMI", 32},
    {"SORT", 33},
    {"ANTI", 34},
    {"COUNT", 35},
    {"MERGE", 36},
    {"MINUS", 37},
    {"OR", 38},
    {"AND", 39},
    {"SINGLE", 40},
    {"ITERATOR", 41},
    {"ALL", 42},
    {"INLIST", 43},
    {"INVALID", 44},
    {"BY USER ROWID", 45},
    {"BY GLOBAL INDEX ROWID", 46},
    {"SUBQUERY FETCH", 47},
    {"PICKLER FETCH", 48},
    {"REMOTE", 49},
    {"FIXED INDEX", 50},
    {"FIXED INDEX #1", 51},
    {"FIXED INDEX #2", 52},
    {"FIXED INDEX #3", 53},
    {"FIXED INDEX #4", 54},
    {"FIXED INDEX #5", 55},
    {"WITH FILTERING", 56},
    {"WITHOUT FILTERING", 57},
    {"CUBE", 58},
    {"SAMPLE", 59},
    {"GROUP BY NOSORT", 20},
    {"SAMPLE BY ROWID RANGE", 61},
    {"SKIP SCAN", 62},
    {"RIGHT ANTI", 63},
    {"RIGHT SEMI", 64},
    {"RIGHT OUTER", 65},
    {"FULL SCAN DESCENDING", 66},
    {"BLOCK, CHUNK", 67},
    {"QC (RANDOM), HASH, RANGE", 68},
    {"", 69},
}};

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

PlanCodes SplitOpText(std::string_view op) {
  PlanCodes codes;
  std::string_view rest;
  for (const PlanRow& row : kOperations) {
    if (StartsWith(op, row.name) && op.size() > row.name.size() && op[row.name.size()] == ' ') {
      codes.operation = row.code;
      rest = op.substr(row.name.size() + 1);
      break;
    }
  }
  if (codes.operation == kNoOperation) return codes;
  for (const PlanRow& row : kOptions) {
    if (StartsWith(rest, row.name)) {
      codes.option = row.code;
      break;
    }
  }
  return codes;
}

std::string_view OperationName(int code) {
  // "", not {}: writers copy the name, and a view without a pointer must not reach memcpy.
  if (code < 0 || static_cast<std::size_t>(code) >= kOperations.size()) return "";
  return kOperations[static_cast<std::size_t>(code)].name;
}

std::string_view OptionName(int code) {
  if (code < 0 || static_cast<std::size_t>(code) >= kOptions.size()) return "";
  return kOptions[static_cast<std::size_t>(code)].name;
}

}  // namespace parser
