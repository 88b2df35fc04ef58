// Every one of the 25 methods through a Caller, with the files they write compared to the
// Linux goldens (CR LF line ends here: documents are written in text mode on Windows):
// local parses, the file share on a Z:\ path, FTP against the real proftpd of the ctest
// fixture, and the argument checks that tell a null BSTR from an empty one.
#ifndef PELICOR_TESTS_COM_SCENARIO_H_
#define PELICOR_TESTS_COM_SCENARIO_H_

#include <string>

#include "calls.h"
#include "checks.h"

namespace com_test {

struct Paths {
  std::string fixtures;   // tests\facade\data
  std::string scratch;    // this run's own folder, empty; becomes the current directory
  std::string ftp_state;  // the FTP fixture's state folder
  std::string ftp_dir;    // the folder this run uses on the FTP server ("com-early", ...)
};

void RunScenario(Caller& caller, const Paths& paths, Checks& checks);

// "/tmp/x" -> "Z:\tmp\x": Wine maps the Unix root to drive Z:.
std::string WindowsPath(const std::string& unix_path);

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_SCENARIO_H_
