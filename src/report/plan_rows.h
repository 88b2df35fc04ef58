// The execution plan of a statement as a tree, from its STAT lines:
//   STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP (cr=8 r=0 w=0 time=290 us)'
//   STAT #1407.. id=1 cnt=6 pid=0 pos=1 obj=0 op='HASH GROUP BY (cr=17 pr=2 pw=0 str=1
//     time=79 us cost=99 size=1129 card=5)'
#ifndef PELICOR_REPORT_PLAN_ROWS_H_
#define PELICOR_REPORT_PLAN_ROWS_H_

#include <vector>

#include "parser/records.h"
#include "report/profile.h"

namespace report {

// The rows of the last plan among `stats` (a cursor writes its plan again after later
// executions; each plan starts at id 1), each with its depth below the root. Rows whose parent
// is not among them count as roots.
std::vector<PlanRow> PlanRows(const std::vector<parser::StatRecord>& stats);

// The operation text and the row-source figures of one op text; fields it lacks stay -1.
PlanRow ReadOperation(std::string_view op);

}  // namespace report

#endif  // PELICOR_REPORT_PLAN_ROWS_H_
