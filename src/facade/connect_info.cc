#include "facade/connect_info.h"

namespace facade {

OracleRelease DecodeOracleRelease(std::uint16_t ver) {
  OracleRelease release;
  release.major = ver / 10;
  release.minor = ver % 10;
  if (release.major == 0) release.major = release.minor + 1;
  return release;
}

}  // namespace facade
