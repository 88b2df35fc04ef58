#include "facade/ftp_session.h"

#include "facade/method_rules.h"

namespace facade {

// This build carries no FTP transport: every flow that needs a session ends here, after its
// argument checks and the steps that come before the session.
std::unique_ptr<FtpSession> MakeFtpSession() {
  ThrowUnavailable("MakeFtpSession", "FTP transport is not available in this build");
}

}  // namespace facade
