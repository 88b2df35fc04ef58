// The connection data that CPelicor keeps for the UTL transport (the FTP and file-share records
// are the transports' own, transport::FtpConnectInfo and transport::NfsConnectInfo).
#ifndef PELICOR_FACADE_CONNECT_INFO_H_
#define PELICOR_FACADE_CONNECT_INFO_H_

#include <cstdint>
#include <string>

namespace facade {

// The Oracle release the host names with its one-number form ("ver" of the UTL methods).
struct OracleRelease {
  int major = 0;
  int minor = 0;
};

// 92 gives 9.2 and 81 gives 8.1. A one-digit ver has no major number; the minor number plus
// one takes its place, so 8 gives 9.8. Hosts have always sent two digits; keep the odd rule for
// the ones that did not.
OracleRelease DecodeOracleRelease(std::uint16_t ver);

// What the UTL flows connect with: the host's own Oracle connection (handle and release), or a
// login by user name, password and TNS alias.
struct UtlConnectInfo {
  std::uint64_t oracle_handle = 0;  // kept at full width
  OracleRelease release;
  std::string user_name;
  std::string password;
  std::string dsn;
};

}  // namespace facade

#endif  // PELICOR_FACADE_CONNECT_INFO_H_
