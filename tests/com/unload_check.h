// The counts behind DllCanUnloadNow, checked on the DLL loaded directly (no registration).
#ifndef PELICOR_TESTS_COM_UNLOAD_CHECK_H_
#define PELICOR_TESTS_COM_UNLOAD_CHECK_H_

#include <string>

namespace com_test {

// Loads `dll` (a Windows path) and checks its unload counts; the exit code. (Its exports:
// exports_check.sh.)
int RunUnload(const std::string& dll);

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_UNLOAD_CHECK_H_
