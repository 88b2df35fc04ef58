// The codes under which a STAT row's operation text is filed: an operation ("TABLE ACCESS") and
// an option ("FULL"). The writers print the codes and look the names up again by code.
#ifndef PELICOR_PARSER_PLAN_TABLES_H_
#define PELICOR_PARSER_PLAN_TABLES_H_

#include <string_view>

namespace parser {

inline constexpr int kNoOperation = 62;  // no operation name matched
inline constexpr int kNoOption = 70;     // no operation, so no option was looked for

struct PlanOperation {
  int operation = kNoOperation;
  int option = kNoOption;
  std::string_view rest;  // the text behind the operation name and its blank
};

// "TABLE ACCESS FULL EMP" -> {0, 2, "FULL EMP"}; "SORT AGGREGATE" -> {19, 16, "AGGREGATE"};
// "COUNT" (a name alone, no blank behind it) -> {62, 70, ""}; "INDEX FOO" -> {2, 69, "FOO"}.
// Both tables are searched in order and the first match wins, so "FIXED INDEX #1" is never
// reached behind "FIXED INDEX": the order is part of what the codes mean.
PlanOperation SplitPlanOperation(std::string_view op_text);

// Names by code: operations 0 to 61, options 0 to 69 (69 is the empty catch-all). Any other
// code, the terminators 62 and 70 included, gives the empty text.
std::string_view OperationName(int code);
std::string_view OptionName(int code);

}  // namespace parser

#endif  // PELICOR_PARSER_PLAN_TABLES_H_
