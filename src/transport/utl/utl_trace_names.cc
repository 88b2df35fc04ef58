// CUtlManager's candidate trace-file names by platform, and the walk over them that finds a
// session's file on the server.
#include <cstdint>
#include <cstdlib>

#include "parser/field_scanner.h"
#include "transport/utl/utl_manager.h"
#include "transport/utl/utl_raise.h"

namespace transport {

namespace {

constexpr int kLastCode = 7;
constexpr int kLastServiceCode = 4;

// "%05ld"
std::string ZeroPadded(long value) {
  const bool negative = value < 0;
  std::string digits = std::to_string(value);
  if (negative) digits.erase(0, 1);
  const std::size_t width = negative ? 4 : 5;
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return negative ? "-" + digits : digits;
}

// An instance name that starts with a capital is lowered whole, any other raised whole:
// orcl -> ORCL, ORCL -> orcl, Orcl -> orcl, 1db -> 1DB.
std::string CaseFlipped(std::string name) {
  const bool lower = !name.empty() && name[0] >= 'A' && name[0] <= 'Z';
  for (char& c : name) {
    if (lower && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (!lower && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return name;
}

// The name of code 6. Its pattern is "%d.trc", but the process id arrives there as text, so the
// number printed was the text's address: the candidate never names a real file, and the walk
// goes on to code 7. Kept so, as the package sees the same sequence of names as always.
std::string AddressName(const std::string& pid) {
  const auto address = reinterpret_cast<std::uintptr_t>(pid.c_str());
  return std::to_string(static_cast<int>(static_cast<unsigned int>(address))) + ".trc";
}

// "SID,SERIAL#" as "%ld,%ld": numbers not reached stay 0.
void ScanSession(const std::string& session, long* sid, long* serial) {
  std::int64_t first = 0;
  std::int64_t second = 0;
  parser::FieldScanner(session).Int64(&first).Literal(",").Int64(&second);
  *sid = static_cast<long>(first);
  *serial = static_cast<long>(second);
}

}  // namespace

std::string CUtlManager::BuildTraceName(int code, const std::string& pid,
                                        const std::string& instance, int flag) const {
  switch (code) {
    case 1:
      return flag == 1 ? "ora" + ZeroPadded(std::strtol(pid.c_str(), nullptr, 10)) + ".trc"
                       : "ora_" + pid + ".trc";
    case 2:
      return instance + (flag == 1 ? "_ora" : "_ora_") + pid + ".trc";
    case 3:
      return "ora_" + instance + "_" + pid + ".trc";
    case 4:
      return CaseFlipped(instance) + (flag == 1 ? "_ora" : "_ora_") + pid + ".trc";
    case 5:  // process id first, unlike codes 2 to 4
      return "ora_" + pid + "_" + CaseFlipped(instance) + ".trc";
    case 6:
      return AddressName(pid);
    case 7:
      return instance + "_ora_" + pid.substr(std::min(pid.find_first_not_of('0'), pid.size())) +
             ".trc";
    default:
      return "";
  }
}

std::string CUtlManager::BuildServiceTraceName(int code, const std::string& a, const std::string& b,
                                               const std::string& c) const {
  switch (code) {
    case 1:
      return c + "_" + a + "_fg_srv_" + b + ".trc";
    case 2:
      return c + "_" + a + "_bg_srv_" + b + ".trc";
    case 3:
      return c + "_" + a + "_fg_oracle_" + b + ".trc";
    case 4:
      return c + "_" + a + "_bg_oracle_" + b + ".trc";
    default:
      return "";
  }
}

std::string CUtlManager::CreateUtlFileName(const std::string& session, const std::string& pid) {
  const int os_type = OsType();
  std::string process_id = pid;
  if (process_id.empty()) {
    long sid = 0;
    long serial = 0;
    ScanSession(session, &sid, &serial);
    process_id = SessionProcessId(sid, serial);
  }
  const std::string instance = InstanceName();
  const std::string& directory = DumpDirectory();
  if (os_type == kUtlVms) {
    // VMS names its files after the node, the instance and the process.
    const std::string host = HostName();
    for (int code = 1; code <= kLastServiceCode; ++code) {
      std::string name = BuildServiceTraceName(code, instance, process_id, host);
      if (ValidateFile(directory, name)) return name;
    }
  } else {
    for (int code = 1; code <= kLastCode; ++code) {
      std::string name = BuildTraceName(code, process_id, instance, os_type);
      if (ValidateFile(directory, name)) return name;
    }
  }
  utl::Raise("CreateUtlFileName",
             "UTL did not find trace file for the session! Check if user_dump_dest is in "
             "utl_file_dir.");
}

}  // namespace transport
