#include "writer_fixtures.h"

#include <gtest/gtest.h>
#ifdef PELICOR_CHECK_XML_WELL_FORMED
#include <pugixml.hpp>
#endif

namespace writer_test {

using namespace parser;

std::string ReadXml(const std::filesystem::path& path) {
  const std::string document = pelicor_test::ReadTextFile(path);
#ifdef PELICOR_CHECK_XML_WELL_FORMED
  pugi::xml_document parsed;
  const pugi::xml_parse_result result = parsed.load_buffer(document.data(), document.size());
  EXPECT_TRUE(result) << path << ": " << result.description() << " at " << result.offset;
#endif
  return document;
}

namespace {

void AddParse(TraceStatement& s, const CallRecord& call) {
  s.parse_calls.push_back(call);
  s.totals[kParseTotals].Add(call);
}
void AddExec(TraceStatement& s, const ExecCallRecord& call) {
  s.exec_calls.push_back(call);
  s.totals[kExecTotals].Add(call);
}
void AddFetch(TraceStatement& s, const CallRecord& call) {
  s.fetch_calls.push_back(call);
  s.totals[kFetchTotals].Add(call);
}

std::unique_ptr<TraceStatement> FirstSample() {
  auto s = std::make_unique<TraceStatement>();
  s->cursor = 1;
  s->header = {
      1, 32,   0,          5,           3,
      5, 1000, 3918581285, "6b3d&1f2c", "select * from emp where a < :1 and b = '&x' ]]> c\n"};
  AddParse(*s, CallRecord{1, 1, 2, 0, 0, 0, 1, 0, 0, 4, 1000});
  s->binds.push_back(
      BindRecord{1, 0, 1, 32, 1, 0, 0, 0, 3, 16, 32, 0, 32, 8, 5, 0, "0a4f<", "a&b<\"c\">"});
  AddExec(*s, ExecCallRecord{{1, 3, 4, 1, 2, 3, 0, 1, 0, 1, 1010}, 0});
  CallRecord missing;
  missing.cursor = 1;
  AddFetch(*s, missing);
  s->stats.push_back(
      StatRecord{1, 1, 14, 0, 1, 31, "TABLE ACCESS FULL EMP (cr=8 r=7 w=0 time=10397 us)"});
  s->stats.push_back(StatRecord{1, 2, -1, 1, 1, 0, "SORT <\"x\">"});
  s->waits.push_back(WaitRecord{1, "db file sequential read", 250, 4, 1234, 1, 1260});
  s->waits.push_back(WaitRecord{1, "SQL*Net message from client", 100, 0, 0, 0, 1360});
  s->waits.push_back(WaitRecord{1, "LATCH FREE", 50, 0, 0, 0, 1410});
  s->waits.push_back(WaitRecord{1, "latch free ", 7, 0, 0, 0, 1417});
  return s;
}

}  // namespace

StatementList SampleStatements() {
  StatementList list;
  list.push_back(FirstSample());
  auto reopened = std::make_unique<TraceStatement>();
  reopened->sequence = 1;
  reopened->cursor = 7;
  reopened->header = {2, 20, 1, 0, 3, 0, 1100, 42, "7a", "select 1 from dual\n"};
  list.push_back(std::move(reopened));
  auto error = std::make_unique<TraceStatement>();
  error->sequence = 2;
  error->cursor = 3;
  error->is_parse_error = true;
  error->parse_error = {3, 8, 0, 5, 3, 5, 1200, 900, "selec x\n"};
  list.push_back(std::move(error));
  auto wide = std::make_unique<TraceStatement>();
  wide->sequence = 3;
  wide->cursor = 140736410372616;
  wide->header = {140736410372616, 17, 0, 5, 47, 5, 1300, 7, "8c", "begin null; end;\n"};
  AddExec(*wide, ExecCallRecord{{140736410372616, 12, 15, 0, 0, 0, 0, 1, 0, 3, 1315}, -1});
  list.push_back(std::move(wide));
  return list;
}

std::unique_ptr<TraceStatement> StatementWithTotals(const std::string& sql, std::int64_t parse,
                                                    std::int64_t exec, std::int64_t fetch) {
  auto s = std::make_unique<TraceStatement>();
  s->header.dep = 0;
  s->header.text = sql;
  const auto call = [](std::int64_t v) {
    const auto n = static_cast<std::int32_t>(v);
    return CallRecord{1, v, v, n, n, n, n, n, 0, 1, 0};
  };
  AddParse(*s, call(parse));
  AddExec(*s, ExecCallRecord{call(exec), -1});
  AddFetch(*s, call(fetch));
  return s;
}

}  // namespace writer_test
