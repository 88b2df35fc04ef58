// The plan-operation and plan-option tables under which a STAT row's op text is split, as in
//   STAT #1 id=3 cnt=14 pid=1 pos=2 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)'
// -> operation 0 "TABLE ACCESS", option 2 "FULL". The tables are searched in order and the first
// match wins; their order (and the codes the writers print) is fixed, including rows that an
// earlier, shorter name hides.
#ifndef PELICOR_PARSER_PLAN_TABLES_H_
#define PELICOR_PARSER_PLAN_TABLES_H_

#include <string_view>

namespace parser {

inline constexpr int kNoOperation = 62;  // no row matched
inline constexpr int kNoOption = 70;     // no operation found, so no option looked for
inline constexpr int kAnyOption = 69;    // the empty last row: any rest

struct PlanCodes {
  int operation = kNoOperation;
  int option = kNoOption;
};

// An operation row matches when its name begins the op text and a blank follows it; the option
// is then looked up in the text after that blank, where a row matches when its name begins it.
// A bare operation name ("COUNT") matches no row.
PlanCodes SplitOpText(std::string_view op);

// The row names by code; empty for the terminators (62, 70) and any code outside the tables.
std::string_view OperationName(int code);
std::string_view OptionName(int code);

}  // namespace parser

#endif  // PELICOR_PARSER_PLAN_TABLES_H_
