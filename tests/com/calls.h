// One IPelicor call as the test clients describe it, and the two ways of making it: through the
// vtable of the widl header (early binding) and through IDispatch alone (late binding).
#ifndef PELICOR_TESTS_COM_CALLS_H_
#define PELICOR_TESTS_COM_CALLS_H_

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace com_test {

// An input argument: text, a null BSTR ("missing"), or a number (u16 or u64 parameters).
struct Arg {
  enum Kind { kText, kNull, kNumber } kind;
  std::string text;
  std::uint64_t number;
};
inline Arg Text(const std::string& text) {
  return {Arg::kText, text, 0};
}
inline Arg Null() {
  return {Arg::kNull, "", 0};
}
inline Arg Num(std::uint64_t number) {
  return {Arg::kNumber, "", number};
}

// What a call gave back: the HRESULT and the outputs, narrow (as the ANSI code page has them).
struct Outcome {
  HRESULT hr = E_FAIL;
  std::string output;  // outputXML or fname; empty for methods without one
  std::string msg;
};

// The 25 methods with their dispatch ids and whether they have an output besides msg.
struct MethodInfo {
  const char* name;
  DISPID id;
  bool has_output;
};
const std::vector<MethodInfo>& Methods();
const MethodInfo* FindMethod(const std::string& name);

class Caller {
 public:
  virtual ~Caller() = default;
  // Calls `method` with its inputs in order; the outputs are added by the caller.
  virtual Outcome Call(const std::string& method, const std::vector<Arg>& inputs) = 0;
};

std::wstring Widen(const std::string& text);
std::string Narrow(const wchar_t* text, UINT length);

}  // namespace com_test

#endif  // PELICOR_TESTS_COM_CALLS_H_
