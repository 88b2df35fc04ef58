// Puts the closed statement list in the order the caller's sort options ask for, before the
// aggregated documents or the text report walk it.
#ifndef PELICOR_PARSER_SORT_STEP_H_
#define PELICOR_PARSER_SORT_STEP_H_

#include "parser/sort_options.h"
#include "parser/trace_statement.h"

namespace parser {

// Without options, or with a key above 7, nothing happens. Otherwise each statement's parse,
// execute and fetch totals, as chosen by prs, exe and fch, are added into its sort totals (which
// are not cleared first), and the list is sorted, stably, in descending order of the key:
// counters compare as unsigned 64-bit numbers (a sum of missing fields, -1 each, sorts first),
// cpu and elapsed as doubles, and key 6 on the first PARSE call's misses (0 without one).
void SortStatements(StatementList& closed, const SortOptions* options);

}  // namespace parser

#endif  // PELICOR_PARSER_SORT_STEP_H_
