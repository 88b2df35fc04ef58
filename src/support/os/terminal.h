// Whether the process's standard streams are attached to a terminal (progress is shown only then).
#ifndef PELICOR_SUPPORT_OS_TERMINAL_H_
#define PELICOR_SUPPORT_OS_TERMINAL_H_

namespace os {

bool StderrIsTerminal();
bool StdoutIsTerminal();

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_TERMINAL_H_
