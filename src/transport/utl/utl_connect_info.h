// What CUtlManager connects with: the host's open Oracle connection (its OCI service context
// handle and the release it runs) or, when the handle is 0, a logon of our own.
#ifndef PELICOR_TRANSPORT_UTL_UTL_CONNECT_INFO_H_
#define PELICOR_TRANSPORT_UTL_UTL_CONNECT_INFO_H_

#include <cstdint>
#include <string>

namespace transport {

struct UtlConnectInfo {
  std::uint64_t handle = 0;  // an OCISvcCtx*, at full width
  std::uint16_t major = 0;   // the release, as decoded from the host's "ver"
  std::uint16_t minor = 0;
  std::string user_name;
  std::string password;
  std::string connect;  // TNS alias or EZConnect string
};

}  // namespace transport

#endif  // PELICOR_TRANSPORT_UTL_UTL_CONNECT_INFO_H_
