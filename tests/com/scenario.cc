#include "scenario.h"

#include <vector>

#include "../support/scratch.h"

namespace com_test {

using pelicor_test::AppendFile;
using pelicor_test::ReadLineFile;
using pelicor_test::ReadWholeFile;
using pelicor_test::WriteWholeFile;

std::string WindowsPath(const std::string& unix_path) {
  std::string path = "Z:" + unix_path;
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

namespace {

constexpr char kTrace[] = "orcl_ora_4242.trc";
constexpr char kSession[] = "4242_orcl.trc";
constexpr char kSessionXml[] = "4242_orcl.xml";
// Found by the listing of a process id ("*4242.trc"), not by its lookup ("4242*.trc").
constexpr char kOfPid[] = "orcl_4242.trc";
constexpr char kOk[] = "OK";

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class Run {
 public:
  Run(Caller& caller, const Paths& paths, Checks& checks)
      : caller_(caller), paths_(paths), checks_(checks) {}

  // Checks result, msg and (for methods with one) the output.
  void Expect(const std::string& method, const std::vector<Arg>& inputs, HRESULT hr,
              const std::string& msg, const std::string& output = std::string()) {
    const Outcome got = caller_.Call(method, inputs);
    checks_.Expect(got.hr == hr && got.msg == msg && got.output == output,
                   method + ": got " + std::to_string(got.hr) + " \"" + got.msg + "\" \"" +
                       got.output + "\", want " + std::to_string(hr) + " \"" + msg + "\" \"" +
                       output + "\"");
  }
  // A batch parse to its end: "MORE" until the trace is read, then "OK".
  void ExpectBatchEnds(const std::string& method, const std::vector<Arg>& inputs,
                       const std::string& output) {
    Outcome got;
    for (int call = 0; call < 5; ++call) {
      got = caller_.Call(method, inputs);
      if (got.hr != S_OK || got.msg != "MORE" || got.output != output) break;
    }
    checks_.Expect(got.hr == S_OK && got.msg == kOk && got.output == output,
                   method + " to the end: got " + std::to_string(got.hr) + " \"" + got.msg +
                       "\" \"" + got.output + "\"");
  }
  void ExpectFile(const std::string& path, const std::string& text, const std::string& what) {
    checks_.Expect(ReadWholeFile(path) == text, what + ": " + path);
  }
  std::string Golden(const std::string& name) const {
    return pelicor_test::NativeLineEnds(ReadWholeFile(paths_.fixtures + "\\" + name));
  }

  void LocalParses() {
    WriteWholeFile(kTrace, trace_);
    Expect("SetWorkingDir", {Text(work_)}, S_OK, kOk);
    Expect("ParseFile", {Text(kTrace), Num(0), Num(0), Num(2)}, S_OK, kOk, "orcl_ora_4242.xml");
    ExpectFile(work_ + "\\orcl_ora_4242.xml", Golden("orcl_ora_4242.calls.xml"), "calls");
    ExpectFile("orcl_ora_4242.xml", Golden("orcl_ora_4242.aggregated.xml"), "aggregated");
    Expect("ParseFile", {Text("trace.log"), Num(0), Num(0), Num(0)}, S_FALSE,
           "Filename does not contain '.trc' !");
    Expect("ParseFileEx", {Text(kTrace), Num(1), Num(0)}, S_OK, "MORE", "orcl_ora_4242.xml");
    ExpectBatchEnds("ParseFileEx", {Text(kTrace), Num(50), Num(0)}, "orcl_ora_4242.xml");
  }

  // The share is a Z:\ path, as a Windows host names a folder of the Unix side under Wine.
  void Share() {
    WriteWholeFile(share_ + "\\" + kSession, trace_);
    WriteWholeFile(share_ + "\\" + kOfPid, "x");
    Expect("NfsSetConnectInfo", {Text(share_)}, S_OK, kOk);
    Expect("NfsGetTraceFileList", {Num(0)}, S_OK, kOk);
    checks_.Expect(Contains(ReadWholeFile(work_ + "\\NfsTraceFileList.txt"), kSession),
                   "NfsTraceFileList.txt names the trace");
    Expect("NfsGetTraceFileListPID", {Text("4242")}, S_OK, kOk);
    checks_.Expect(Contains(ReadWholeFile(work_ + "\\NfsTraceFileList.txt"), kOfPid),
                   "NfsTraceFileList.txt names the trace of the process id");
    DeleteFileA((share_ + "\\" + kOfPid).c_str());  // a second candidate for the lookup
    Expect("NfsGetTraceFilePID", {Text("4242"), Num(1)}, S_OK, kOk, kSession);
    ExpectFile(work_ + "\\" + kSession, trace_, "copied by NfsGetTraceFilePID");
    DeleteFileA((work_ + "\\" + kSession).c_str());
    Expect("NfsGetTraceFile", {Text(kSession)}, S_OK, kOk);
    ExpectFile(work_ + "\\" + kSession, trace_, "copied by NfsGetTraceFile");
    // What the session wrote after the lookup: the start offset skips the first copy.
    AppendFile(share_ + "\\" + kSession, trace_);
    Expect("NfsParseFile", {Text(kSession), Num(0), Num(0), Num(0)}, S_OK, kOk, kSessionXml);
    ExpectFile(work_ + "\\" + kSessionXml, Golden("orcl_ora_4242.calls.xml"), "NfsParseFile");
    ExpectBatchEnds("NfsParseFileEx", {Text(kSession), Num(50), Num(0)}, kSessionXml);
    Expect("NfsValidation", {Text(share_), Text("4242")}, S_OK, kOk);
    Expect("ZantivNfsTrcStartUp", {Text(share_), Text("4242")}, S_OK, kOk, kSessionXml);
    AppendFile(share_ + "\\" + kSession, trace_);
    Expect("ZantivGetTraceInfo", {Text("update emp"), Text("9.2.0.4.0")}, S_OK, kOk);
    ExpectFile(kSessionXml, Golden("orcl_ora_4242.update.xml"), "ZantivGetTraceInfo");
  }

  void Ftp() {
    const std::string state = paths_.ftp_state;
    const std::string host = "127.0.0.1:" + ReadLineFile(state + "\\proftpd.port");
    const std::string user = ReadLineFile(state + "\\user");
    const std::string password = ReadLineFile(state + "\\password");
    const std::string served = state + "\\root\\" + paths_.ftp_dir;
    const std::string udump = "/" + paths_.ftp_dir;
    CreateDirectoryA(served.c_str(), nullptr);
    WriteWholeFile(served + "\\" + kSession, trace_);
    WriteWholeFile(served + "\\" + kOfPid, "x");

    Expect("FtpSetConnectInfo", {Text(host), Text(user), Text(password), Text(udump)}, S_OK, kOk);
    Expect("FtpGetTraceFileList", {Num(0)}, S_OK, kOk);
    checks_.Expect(Contains(ReadWholeFile(work_ + "\\FtpTraceFileList.txt"), kSession),
                   "FtpTraceFileList.txt names the trace");
    Expect("FtpGetTraceFileListPID", {Text("4242")}, S_OK, kOk);
    checks_.Expect(Contains(ReadWholeFile(work_ + "\\FtpTraceFileList.txt"), kOfPid),
                   "FtpTraceFileList.txt names the trace of the process id");
    Expect("FtpGetTraceFilePID", {Text("4242"), Num(0)}, S_OK, kOk, kSession);
    AppendFile(served + "\\" + kSession, trace_);
    Expect("FtpParseFile", {Text(kSession), Num(0), Num(0), Num(0)}, S_OK, kOk, kSessionXml);
    ExpectFile(work_ + "\\" + kSessionXml, Golden("orcl_ora_4242.calls.xml"), "FtpParseFile");
    DeleteFileA((work_ + "\\" + kSession).c_str());
    Expect("FtpGetTraceFile", {Text(kSession)}, S_OK, kOk);
    checks_.Expect(ReadWholeFile(work_ + "\\" + kSession).size() >= 2 * trace_.size(),
                   "FtpGetTraceFile copied the trace");
    ExpectBatchEnds("FtpParseFileEx", {Text(kSession), Num(50), Num(0)}, kSessionXml);
    Expect("FtpValidation", {Text(host), Text(user), Text(password), Text(udump), Text("4242")},
           S_OK, kOk);
    Expect("FtpValidation", {Text(host), Text(user), Text(password), Text(udump), Null()}, S_FALSE,
           "PID is empty or NULL!");
    Expect("ZantivFtpTrcStartUp", {Text(host), Null(), Text(password), Text(udump), Text("4242")},
           S_FALSE, "Hostname/username/password/udump can not be empty! Check registry setting.");
    Expect("ZantivFtpTrcStartUp",
           {Text(host), Text(user), Text(password), Text(udump), Text("4242")}, S_OK, kOk,
           kSessionXml);
  }

  // A null BSTR is "missing"; an empty one is text and passes the checks (the lookup fails).
  void ArgumentChecks() {
    Expect("NfsValidation", {Text(share_), Null()}, S_FALSE, "PID is empty or NULL!");
    Expect("NfsValidation", {Null(), Text("4242")}, S_FALSE,
           "udump can not be empty or NULL! Check registry setting.");
    const Outcome empty = caller_.Call("NfsValidation", {Text(""), Text("4242")});
    checks_.Expect(empty.hr == S_FALSE && !empty.msg.empty() &&
                       empty.msg != "udump can not be empty or NULL! Check registry setting.",
                   "an empty udump is not missing: " + empty.msg);
    const Arg handle = Num(0x123456789abcdef0ULL);
    Expect("UtlValidation",
           {handle, Num(92), Text("scott"), Text("tiger"), Text("orcl"), Text("/u"), Null(),
            Text("1")},
           S_FALSE, "username/pwd/tns/udump/sid is empty or NULL!");
    Expect("UtlValidation",
           {handle, Num(92), Text("scott"), Text("tiger"), Text("orcl"), Text("/u"), Text("orcl"),
            Null()},
           S_FALSE, "PID is empty or NULL!");
    Expect("ZantivUtlTrcStartUp",
           {handle, Num(92), Text("scott"), Null(), Text("orcl"), Text("/u"), Text("orcl"),
            Text("1"), Text("m")},
           S_FALSE, "username/password/udump can not be empty! Check registry setting.");
    Expect("SetSortOption", {Num(1), Num(0), Num(1), Num(1)}, S_OK, kOk);
  }

 private:
  Caller& caller_;
  const Paths& paths_;
  Checks& checks_;
  const std::string trace_ = ReadWholeFile(paths_.fixtures + "\\" + kTrace);
  const std::string work_ = paths_.scratch + "\\work";
  const std::string share_ = paths_.scratch + "\\udump";
};

}  // namespace

void RunScenario(Caller& caller, const Paths& paths, Checks& checks) {
  CreateDirectoryA((paths.scratch + "\\work").c_str(), nullptr);
  CreateDirectoryA((paths.scratch + "\\udump").c_str(), nullptr);
  SetCurrentDirectoryA(paths.scratch.c_str());
  Run run(caller, paths, checks);
  run.LocalParses();
  run.Share();
  run.Ftp();
  run.ArgumentChecks();
}

}  // namespace com_test
