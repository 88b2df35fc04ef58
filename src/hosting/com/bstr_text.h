// BSTR <-> narrow text at the COM boundary. Inside, every string is narrow text in the system's
// ANSI code page (the file functions take it as it is), so each BSTR argument is converted once
// with CP_ACP on entry and every output is a new BSTR of the ANSI-to-wide conversion.
#ifndef PELICOR_HOSTING_COM_BSTR_TEXT_H_
#define PELICOR_HOSTING_COM_BSTR_TEXT_H_

#include <windows.h>

#include <string>

namespace com {

// One converted argument. A null BSTR stays "missing" (c_str() is nullptr), which the session
// methods refuse with their own message; an empty BSTR is empty text. Throws std::bad_alloc.
class NarrowArg {
 public:
  explicit NarrowArg(BSTR wide);
  const char* c_str() const { return missing_ ? nullptr : text_.c_str(); }

 private:
  bool missing_;
  std::string text_;
};

// A new BSTR holding `text` widened from the ANSI code page; nullptr when out of memory.
BSTR NewBstr(const std::string& text) noexcept;

}  // namespace com

#endif  // PELICOR_HOSTING_COM_BSTR_TEXT_H_
