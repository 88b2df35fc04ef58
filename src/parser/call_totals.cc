#include "parser/call_totals.h"

namespace parser {

void CallTotals::Add(const CallRecord& call) {
  count += 1;
  cpu += static_cast<double>(call.c);
  elapsed += static_cast<double>(call.e);
  disk += call.p;
  query += call.cr;
  current += call.cu;
  rows += call.r;
}

void CallTotals::Add(const CallTotals& other) {
  count += other.count;
  cpu += other.cpu;
  elapsed += other.elapsed;
  disk += other.disk;
  query += other.query;
  current += other.current;
  rows += other.rows;
}

}  // namespace parser
