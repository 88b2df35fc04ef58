#include "support/os/terminal.h"

#ifdef _WIN32
#include <io.h>
#define PELICOR_ISATTY _isatty
#else
#include <unistd.h>
#define PELICOR_ISATTY isatty
#endif

namespace os {

bool StderrIsTerminal() {
  return PELICOR_ISATTY(2) != 0;
}
bool StdoutIsTerminal() {
  return PELICOR_ISATTY(1) != 0;
}

}  // namespace os
