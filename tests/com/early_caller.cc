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

const std::map<std::string, Early>& EarlyCalls() {
  static const std::map<std::string, Early> calls = {
      {"FtpGetTraceFileList", [](IPelicor* p, const Inputs& a, BSTR*,
                                 BSTR* m) { return p->FtpGetTraceFileList(a.u(0), m); }},
      {"FtpGetTraceFile",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) { return p->FtpGetTraceFile(a.s(0), m); }},
      {"NfsGetTraceFile",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) { return p->NfsGetTraceFile(a.s(0), m); }},
      {"FtpSetConnectInfo",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) {
         return p->FtpSetConnectInfo(a.s(0), a.s(1), a.s(2), a.s(3), m);
       }},
      {"ParseFile", [](IPelicor* p, const Inputs& a, BSTR* o,
                       BSTR* m) { return p->ParseFile(a.s(0), a.u(1), a.u(2), a.u(3), o, m); }},
      {"FtpParseFile",
       [](IPelicor* p, const Inputs& a, BSTR* o, BSTR* m) {
         return p->FtpParseFile(a.s(0), a.u(1), a.u(2), a.u(3), o, m);
       }},
      {"NfsParseFile",
       [](IPelicor* p, const Inputs& a, BSTR* o, BSTR* m) {
         return p->NfsParseFile(a.s(0), a.u(1), a.u(2), a.u(3), o, m);
       }},
      {"NfsSetConnectInfo", [](IPelicor* p, const Inputs& a, BSTR*,
                               BSTR* m) { return p->NfsSetConnectInfo(a.s(0), m); }},
      {"NfsGetTraceFileList", [](IPelicor* p, const Inputs& a, BSTR*,
                                 BSTR* m) { return p->NfsGetTraceFileList(a.u(0), m); }},
      {"SetWorkingDir",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) { return p->SetWorkingDir(a.s(0), m); }},
      {"SetSortOption",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) {
         return p->SetSortOption(a.u(0), a.u(1), a.u(2), a.u(3), m);
       }},
      {"FtpGetTraceFilePID", [](IPelicor* p, const Inputs& a, BSTR* o,
                                BSTR* m) { return p->FtpGetTraceFilePID(a.s(0), a.u(1), o, m); }},
      {"NfsGetTraceFilePID", [](IPelicor* p, const Inputs& a, BSTR* o,
                                BSTR* m) { return p->NfsGetTraceFilePID(a.s(0), a.u(1), o, m); }},
      {"ParseFileEx", [](IPelicor* p, const Inputs& a, BSTR* o,
                         BSTR* m) { return p->ParseFileEx(a.s(0), a.u(1), a.u(2), o, m); }},
      {"FtpParseFileEx", [](IPelicor* p, const Inputs& a, BSTR* o,
                            BSTR* m) { return p->FtpParseFileEx(a.s(0), a.u(1), a.u(2), o, m); }},
      {"NfsParseFileEx", [](IPelicor* p, const Inputs& a, BSTR* o,
                            BSTR* m) { return p->NfsParseFileEx(a.s(0), a.u(1), a.u(2), o, m); }},
      {"ZantivFtpTrcStartUp",
       [](IPelicor* p, const Inputs& a, BSTR* o, BSTR* m) {
         return p->ZantivFtpTrcStartUp(a.s(0), a.s(1), a.s(2), a.s(3), a.s(4), o, m);
       }},
      {"ZantivNfsTrcStartUp", [](IPelicor* p, const Inputs& a, BSTR* o,
                                 BSTR* m) { return p->ZantivNfsTrcStartUp(a.s(0), a.s(1), o, m); }},
      {"ZantivUtlTrcStartUp",
       [](IPelicor* p, const Inputs& a, BSTR* o, BSTR* m) {
         return p->ZantivUtlTrcStartUp(a.l(0), a.u(1), a.s(2), a.s(3), a.s(4), a.s(5), a.s(6),
                                       a.s(7), a.s(8), o, m);
       }},
      {"ZantivGetTraceInfo", [](IPelicor* p, const Inputs& a, BSTR*,
                                BSTR* m) { return p->ZantivGetTraceInfo(a.s(0), a.s(1), m); }},
      {"FtpValidation",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) {
         return p->FtpValidation(a.s(0), a.s(1), a.s(2), a.s(3), a.s(4), m);
       }},
      {"NfsValidation", [](IPelicor* p, const Inputs& a, BSTR*,
                           BSTR* m) { return p->NfsValidation(a.s(0), a.s(1), m); }},
      {"UtlValidation",
       [](IPelicor* p, const Inputs& a, BSTR*, BSTR* m) {
         return p->UtlValidation(a.l(0), a.u(1), a.s(2), a.s(3), a.s(4), a.s(5), a.s(6), a.s(7), m);
       }},
      {"FtpGetTraceFileListPID", [](IPelicor* p, const Inputs& a, BSTR*,
                                    BSTR* m) { return p->FtpGetTraceFileListPID(a.s(0), m); }},
      {"NfsGetTraceFileListPID", [](IPelicor* p, const Inputs& a, BSTR*,
                                    BSTR* m) { return p->NfsGetTraceFileListPID(a.s(0), m); }},
  };
  return calls;
}

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
