// Small hand-written traces of the releases and session layouts the profile must read, and a
// helper that profiles a trace text.
#ifndef PELICOR_TESTS_REPORT_REPORT_FIXTURES_H_
#define PELICOR_TESTS_REPORT_REPORT_FIXTURES_H_

#include <string>
#include <string_view>

#include "report/profiling_parser.h"
#include "support/scratch.h"

namespace report_test {

// Oracle 8.1.7 on Windows: every time in centiseconds, waits without a time of their own.
inline constexpr std::string_view kOracle8i =
    "Dump file e:\\oracle\\admin\\TEST\\udump\\ORA00138.TRC\n"
    "Sat Aug 11 16:07:56 2001\n"
    "ORACLE V8.1.7.0.0 - Production vsnsta=0\n"
    "vsnsql=e vsnxtr=3\n"
    "Windows NT Version 4.0 Service Pack 6, CPU type 586\n"
    "Oracle8i Enterprise Edition Release 8.1.7.0.0 - Production\n"
    "With the Partitioning option\n"
    "JServer Release 8.1.7.0.0 - Production\n"
    "Instance name: test\n"
    "Redo thread mounted by this instance: 1\n"
    "Oracle process number: 8\n"
    "Windows thread id: 138, image: ORACLE.EXE\n"
    "\n"
    "*** 2001-08-11 16:07:56.821\n"
    "*** SESSION ID:(7.4) 2001-08-11 16:07:56.801\n"
    "APPNAME mod='SQL*Plus' mh=0 act='' ah=4029777240\n"
    "=====================\n"
    "PARSING IN CURSOR #1 len=30 dep=0 uid=5 oct=3 lid=5 tim=1000 hv=123 ad='6b3d1f2c'\n"
    "select ename from emp where 1=1\n"
    "END OF STMT\n"
    "PARSE #1:c=1,e=2,p=0,cr=0,cu=0,mis=1,r=0,dep=0,og=4,tim=1002\n"
    "EXEC #1:c=0,e=0,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=1002\n"
    "WAIT #1: nam='SQL*Net message to client' ela= 0 p1=1650815232 p2=1 p3=0\n"
    "WAIT #1: nam='db file scattered read' ela= 5 p1=4 p2=1234 p3=8\n"
    "FETCH #1:c=2,e=8,p=8,cr=4,cu=0,mis=0,r=14,dep=0,og=4,tim=1010\n"
    "WAIT #1: nam='SQL*Net message from client' ela= 40 p1=1650815232 p2=1 p3=0\n"
    "FETCH #1:c=0,e=0,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=1050\n"
    "STAT #1 id=1 cnt=14 pid=0 pos=0 obj=0 op='SORT ORDER BY '\n"
    "STAT #1 id=2 cnt=14 pid=1 pos=1 obj=31 op='TABLE ACCESS FULL EMP '\n";

// A trace that starts in the middle of a session (the file was cut, or tracing was switched on
// late): no header, and cursor 7 was parsed before the trace starts.
inline constexpr std::string_view kMidSession =
    "WAIT #0: nam='SQL*Net message from client' ela= 2000000 driver id=1 #bytes=1 p3=0 obj#=-1 "
    "tim=5000000000000\n"
    "FETCH #7:c=1000,e=1500,p=0,cr=3,cu=0,mis=0,r=10,dep=0,og=1,plh=1,tim=5000000001600\n"
    "WAIT #7: nam='db file sequential read' ela= 700 file#=1 block#=2 blocks=1 obj#=5 "
    "tim=5000000002400\n"
    "FETCH #7:c=0,e=900,p=1,cr=1,cu=0,mis=0,r=5,dep=0,og=1,plh=1,tim=5000000002600\n";

// A shared server process: two sessions take turns on it.
inline constexpr std::string_view kSharedServer =
    "/u00/app/oracle/admin/DBM10203/bdump/dbm10203_s000_24374.trc\n"
    "Oracle Database 10g Enterprise Edition Release 10.2.0.3.0 - 64bit Production\n"
    "Instance name: DBM10203\n"
    "Oracle process number: 18\n"
    "Unix process pid: 24374, image: oracle@helicon (S000)\n"
    "\n"
    "*** SESSION ID:(150.65) 2007-07-11 11:05:33.800\n"
    "=====================\n"
    "PARSING IN CURSOR #1 len=18 dep=0 uid=0 oct=3 lid=0 tim=100 hv=1 ad='a1'\n"
    "select 4 from dual\n"
    "END OF STMT\n"
    "PARSE #1:c=0,e=10,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,tim=110\n"
    "EXEC #1:c=0,e=20,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,tim=140\n"
    "*** SESSION ID:(147.121) 2007-07-11 11:05:46.812\n"
    "=====================\n"
    "PARSING IN CURSOR #2 len=18 dep=0 uid=0 oct=3 lid=0 tim=1000 hv=2 ad='a2'\n"
    "select 6 from dual\n"
    "END OF STMT\n"
    "PARSE #2:c=1000,e=30,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=1,tim=1030\n"
    "*** SESSION ID:(150.65) 2007-07-11 11:05:59.588\n"
    "FETCH #1:c=0,e=5,p=0,cr=0,cu=0,mis=0,r=1,dep=0,og=1,tim=2005\n";

// Profiles a trace given as text.
inline report::Profile ProfileOf(std::string_view trace_text) {
  const pelicor_test::ScratchDir dir;
  const auto path = dir.path() / "fixture.trc";
  pelicor_test::WriteWholeFile(path, trace_text);
  report::ProfilingParser parser;
  parser.Parse(path.string(), 0);
  return parser.TakeProfile();
}

}  // namespace report_test

#endif  // PELICOR_TESTS_REPORT_REPORT_FIXTURES_H_
