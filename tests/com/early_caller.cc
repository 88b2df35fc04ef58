#include "early_caller.h"

#include <functional>
#include <map>

namespace com_test {
namespace {

// The inputs of one call as the vtable takes them; the BSTRs are freed at the end of the call.
class Inputs {
 public:
  explicit Inputs(const std::vector<Arg>& args) : args_(args) {
    for (const Arg& arg : args) {
      const std::wstring wide = Widen(arg.text);
      strings_.push_back(arg.kind == Arg::kText
                             ? SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()))
                             : nullptr);
    }
  }
  Inputs(const Inputs&) = delete;
  Inputs& operator=(const Inputs&) = delete;
  ~Inputs() {
    for (BSTR text : strings_) SysFreeString(text);
  }
  BSTR s(std::size_t i) const { return strings_.at(i); }
  unsigned short u(std::size_t i) const { return static_cast<unsigned short>(args_.at(i).number); }
  UINT64 l(std::size_t i) const { return args_.at(i).number; }

 private:
  const std::vector<Arg>& args_;
  std::vector<BSTR> strings_;
};

using Early = std::function<HRESULT(IPelicor*, const Inputs&, BSTR* out, BSTR* msg)>;

// One vtable call: `method` with its arguments, written with a.s(i) (a BSTR), a.u(i) (an
// unsigned short), a.l(i) (a 64-bit number), o (the output) and m (msg).
// clang-format off
#define PELICOR_EARLY_CALL(method, ...)                                          \
  {#method, [](IPelicor* p, const Inputs& a, [[maybe_unused]] BSTR* o, BSTR* m) { \
     return p->method(__VA_ARGS__);                                              \
   }}
// clang-format on

const std::map<std::string, Early>& EarlyCalls() {
  // clang-format off
  static const std::map<std::string, Early> calls = {
      PELICOR_EARLY_CALL(FtpGetTraceFileList, a.u(0), m),
      PELICOR_EARLY_CALL(FtpGetTraceFile, a.s(0), m),
      PELICOR_EARLY_CALL(NfsGetTraceFile, a.s(0), m),
      PELICOR_EARLY_CALL(FtpSetConnectInfo, a.s(0), a.s(1), a.s(2), a.s(3), m),
      PELICOR_EARLY_CALL(ParseFile, a.s(0), a.u(1), a.u(2), a.u(3), o, m),
      PELICOR_EARLY_CALL(FtpParseFile, a.s(0), a.u(1), a.u(2), a.u(3), o, m),
      PELICOR_EARLY_CALL(NfsParseFile, a.s(0), a.u(1), a.u(2), a.u(3), o, m),
      PELICOR_EARLY_CALL(NfsSetConnectInfo, a.s(0), m),
      PELICOR_EARLY_CALL(NfsGetTraceFileList, a.u(0), m),
      PELICOR_EARLY_CALL(SetWorkingDir, a.s(0), m),
      PELICOR_EARLY_CALL(SetSortOption, a.u(0), a.u(1), a.u(2), a.u(3), m),
      PELICOR_EARLY_CALL(FtpGetTraceFilePID, a.s(0), a.u(1), o, m),
      PELICOR_EARLY_CALL(NfsGetTraceFilePID, a.s(0), a.u(1), o, m),
      PELICOR_EARLY_CALL(ParseFileEx, a.s(0), a.u(1), a.u(2), o, m),
      PELICOR_EARLY_CALL(FtpParseFileEx, a.s(0), a.u(1), a.u(2), o, m),
      PELICOR_EARLY_CALL(NfsParseFileEx, a.s(0), a.u(1), a.u(2), o, m),
      PELICOR_EARLY_CALL(ZantivFtpTrcStartUp, a.s(0), a.s(1), a.s(2), a.s(3), a.s(4), o, m),
      PELICOR_EARLY_CALL(ZantivNfsTrcStartUp, a.s(0), a.s(1), o, m),
      PELICOR_EARLY_CALL(ZantivUtlTrcStartUp, a.l(0), a.u(1), a.s(2), a.s(3), a.s(4), a.s(5),
                         a.s(6), a.s(7), a.s(8), o, m),
      PELICOR_EARLY_CALL(ZantivGetTraceInfo, a.s(0), a.s(1), m),
      PELICOR_EARLY_CALL(FtpValidation, a.s(0), a.s(1), a.s(2), a.s(3), a.s(4), m),
      PELICOR_EARLY_CALL(NfsValidation, a.s(0), a.s(1), m),
      PELICOR_EARLY_CALL(UtlValidation, a.l(0), a.u(1), a.s(2), a.s(3), a.s(4), a.s(5), a.s(6),
                         a.s(7), m),
      PELICOR_EARLY_CALL(FtpGetTraceFileListPID, a.s(0), m),
      PELICOR_EARLY_CALL(NfsGetTraceFileListPID, a.s(0), m),
  };
  // clang-format on
  return calls;
}
#undef PELICOR_EARLY_CALL

std::string Take(BSTR* text) {
  std::string narrow = Narrow(*text, SysStringLen(*text));
  SysFreeString(*text);
  *text = nullptr;
  return narrow;
}

}  // namespace

Outcome EarlyCaller::Call(const std::string& method, const std::vector<Arg>& inputs) {
  Outcome outcome;
  const Inputs arguments(inputs);
  BSTR out = nullptr;
  BSTR msg = nullptr;
  outcome.hr = EarlyCalls().at(method)(object_, arguments, &out, &msg);
  outcome.output = Take(&out);
  outcome.msg = Take(&msg);
  return outcome;
}

HRESULT EarlyCaller::CallWithNullOuts(const std::string& method, const std::vector<Arg>& inputs,
                                      bool null_output, bool null_msg) {
  const Inputs arguments(inputs);
  BSTR out = nullptr;
  BSTR msg = nullptr;
  const HRESULT hr = EarlyCalls().at(method)(object_, arguments, null_output ? nullptr : &out,
                                             null_msg ? nullptr : &msg);
  Take(&out);
  Take(&msg);
  return hr;
}

}  // namespace com_test
