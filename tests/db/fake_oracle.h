// A database server for the tests: the stand-in client library of fake_oci/ made the process's
// Oracle client (PELICOR_OCI_LIBRARY), with a scenario the test edits, a folder of real trace
// files behind the server's dump directory, and the transcript of what the library was sent.
// The object also holds the library loaded itself, to count the handles left unfreed and to
// play the host that has its own connection open.
#ifndef PELICOR_TESTS_DB_FAKE_ORACLE_H_
#define PELICOR_TESTS_DB_FAKE_ORACLE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "../support/scratch.h"
#include "db/oci_api.h"
#include "support/os/shared_library.h"

namespace pelicor_test {

inline constexpr const char* kServerDumpDir = "/u01/app/oracle/admin/orcl/udump";

class FakeOracle {
 public:
  FakeOracle() {
    std::filesystem::create_directory(folder());
    Restore();
    setenv("PELICOR_OCI_LIBRARY", PELICOR_FAKE_OCI, 1);
    setenv("PELICOR_FAKE_OCI_SCENARIO", scenario_path().c_str(), 1);
    std::string error;
    EXPECT_TRUE(library_.Open(PELICOR_FAKE_OCI, &error)) << error;
    baseline_ = LiveHandles();
  }
  ~FakeOracle() {
    CloseHost();
    EXPECT_EQ(LiveHandles(), baseline_) << "a handle was not freed";
    unsetenv("PELICOR_OCI_LIBRARY");
    unsetenv("PELICOR_FAKE_OCI_SCENARIO");
  }
  FakeOracle(const FakeOracle&) = delete;
  FakeOracle& operator=(const FakeOracle&) = delete;

  // The folder behind the server's dump directory.
  std::filesystem::path folder() const { return dir_.path() / "udump"; }
  std::string scenario_path() const { return dir_.File("scenario.txt"); }

  // Sets (or, with an empty value, removes) one answer of the server.
  void Set(const std::string& key, const std::string& value) {
    if (value.empty()) {
      values_.erase(key);
    } else {
      values_[key] = value;
    }
    Save();
  }
  // Back to the server every test starts with: Oracle 9.2 on Linux, instance orcl on dbhost01,
  // session 17,4711 served by process 4242, the package installed, scott/tiger@orcl.
  void Restore() {
    values_ = {{"tns_banner", "TNS for Linux: Version 9.2.0.4.0 - Production"},
               {"os_version", "9.2.0.4.0"},
               {"plsql_banner", "PL/SQL Release 9.2.0.4.0 - Production"},
               {"instance", "orcl"},
               {"host_name", "dbhost01"},
               {"user_dump_dest", kServerDumpDir},
               {"trace_folder", folder().string()},
               {"user", "scott"},
               {"password", "tiger"},
               {"connect", "orcl"},
               {"spid", "17,4711,4242"},
               {"transcript", dir_.File("transcript.txt")}};
    extra_.clear();
    Save();
  }
  // Adds a line that may repeat (spid=, fail=, fail_sql=).
  void Add(const std::string& line) {
    extra_.push_back(line);
    Save();
  }

  // The transcript lines that start with `kind` ("prepare ", "bind "), without it.
  std::vector<std::string> Sent(const std::string& kind) const {
    std::vector<std::string> lines;
    std::istringstream in(ReadWholeFile(dir_.File("transcript.txt")));
    for (std::string line; std::getline(in, line);) {
      if (line.compare(0, kind.size(), kind) == 0) lines.push_back(line.substr(kind.size()));
    }
    return lines;
  }
  void ClearTranscript() const { WriteWholeFile(dir_.File("transcript.txt"), ""); }

  int LiveHandles() const {
    using Count = int (*)();
    auto count = reinterpret_cast<Count>(library_.Find("fake_oci_live_handles"));
    return count ? count() : -1;
  }

  // The host's own connection (environment, error handle, service context) as its handle.
  std::uint64_t HostHandle() {
    namespace oci = db::oci;
    if (host_service_ != nullptr) return reinterpret_cast<std::uintptr_t>(host_service_);
    auto env_create = Function<oci::OCIEnvCreateFn>("OCIEnvCreate");
    auto alloc = Function<oci::OCIHandleAllocFn>("OCIHandleAlloc");
    auto logon = Function<oci::OCILogonFn>("OCILogon");
    env_create(&host_env_, 0, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    alloc(host_env_, reinterpret_cast<void**>(&host_error_), oci::OCI_HTYPE_ERROR, 0, nullptr);
    const auto text = [](const char* s) { return reinterpret_cast<const oci::OraText*>(s); };
    EXPECT_EQ(logon(host_env_, host_error_, &host_service_, text("scott"), 5, text("tiger"), 5,
                    text("orcl"), 4),
              0);
    baseline_ += 3;  // the host's own: environment, error handle, service context
    return reinterpret_cast<std::uintptr_t>(host_service_);
  }

 private:
  template <typename Fn>
  Fn Function(const char* name) const {
    return reinterpret_cast<Fn>(library_.Find(name));
  }
  void CloseHost() {
    namespace oci = db::oci;
    if (host_service_ == nullptr) return;
    Function<oci::OCILogoffFn>("OCILogoff")(host_service_, host_error_);
    Function<oci::OCIHandleFreeFn>("OCIHandleFree")(host_error_, oci::OCI_HTYPE_ERROR);
    Function<oci::OCIHandleFreeFn>("OCIHandleFree")(host_env_, oci::OCI_HTYPE_ENV);
    host_service_ = nullptr;
    baseline_ -= 3;
  }
  void Save() const {
    std::ofstream out(scenario_path(), std::ios::trunc);
    for (const auto& [key, value] : values_) out << key << "=" << value << "\n";
    for (const std::string& line : extra_) out << line << "\n";
  }

  ScratchDir dir_;
  std::map<std::string, std::string> values_;
  std::vector<std::string> extra_;
  os::SharedLibrary library_;
  int baseline_ = 0;
  db::oci::OCIEnv* host_env_ = nullptr;
  db::oci::OCIError* host_error_ = nullptr;
  db::oci::OCISvcCtx* host_service_ = nullptr;
};

// The fixture trace of the facade tests.
inline std::string FixtureTrace() {
  return ReadWholeFile(std::filesystem::path(PELICOR_FACADE_DATA) / "orcl_ora_4242.trc");
}

}  // namespace pelicor_test

#endif  // PELICOR_TESTS_DB_FAKE_ORACLE_H_
