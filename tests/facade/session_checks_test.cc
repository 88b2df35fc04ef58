// The argument checks of the session methods (a null string is missing, an empty one is not),
// and what the UTL methods leave behind when they cannot connect.
#include <functional>
#include <string>
#include <vector>

#include "facade_fixture.h"

namespace facade_test {
namespace {

// An empty text passes the checks and is refused by the FTP transport before any traffic.
constexpr const char* kFtpEmpty = "hostname/username/password/udump, one of them is empty!";
// Without a handle or a user name there is nothing to connect with; no client library is loaded.
constexpr const char* kNoUtl = "UTL failed to connect to Oracle using OCI dll!";
constexpr const char* kPidMissing = "PID is empty or NULL!";

class SessionChecksTest : public FacadeTest {};

using Call =
    std::function<int(facade::CPelicor&, const char* blank, std::string* out, std::string* msg)>;
struct CheckRow {
  const char* name;
  Call call;            // passes `blank` for the argument under test
  const char* refusal;  // the answer when `blank` is null
  const char* later;    // the answer when `blank` is empty: the check lets it through
};

std::vector<CheckRow> CheckRows() {
  const char* nfs_later = "NFS working dir or qualified trace path is not set!";
  return {
      {"FtpValidation host",
       [](auto& s, auto b, auto, auto m) { return s.FtpValidation(b, "u", "p", "/d", "1", m); },
       "hostname/username/password/udump/pid can not be empty or NULL! Check registry setting.",
       kFtpEmpty},
      {"FtpValidation PID",
       [](auto& s, auto b, auto, auto m) { return s.FtpValidation("", "u", "p", "/d", b, m); },
       kPidMissing, kFtpEmpty},
      {"NfsValidation udump",
       [](auto& s, auto b, auto, auto m) { return s.NfsValidation(b, "1", m); },
       "udump can not be empty or NULL! Check registry setting.", nfs_later},
      {"UtlValidation sid",
       [](auto& s, auto b, auto, auto m) {
         return s.UtlValidation(0, 92, "", "p", "tns", "/d", b, "1", m);
       },
       "username/pwd/tns/udump/sid is empty or NULL!", kNoUtl},
      {"ZantivFtpTrcStartUp password",
       [](auto& s, auto b, auto o, auto m) {
         return s.ZantivFtpTrcStartUp("h", "u", b, "/d", "1", o, m);
       },
       "Hostname/username/password/udump can not be empty! Check registry setting.", kFtpEmpty},
      {"ZantivNfsTrcStartUp PID",
       [](auto& s, auto b, auto o, auto m) { return s.ZantivNfsTrcStartUp("/d", b, o, m); },
       "udump/PID can not be empty! Check registry setting.",
       "NFS failed to open trace file for the session!"},
      {"ZantivUtlTrcStartUp username",
       [](auto& s, auto b, auto o, auto m) {
         return s.ZantivUtlTrcStartUp(0, 92, b, "p", nullptr, "/d", nullptr, nullptr, nullptr, o,
                                      m);
       },
       "username/password/udump can not be empty! Check registry setting.", kNoUtl},
  };
}

TEST_F(SessionChecksTest, NullIsMissingAndEmptyIsNot) {
  for (const CheckRow& row : CheckRows()) {
    SCOPED_TRACE(row.name);
    facade::CPelicor fresh;
    std::string out = "stale";
    std::string msg;
    EXPECT_EQ(row.call(fresh, nullptr, &out, &msg), 1);
    EXPECT_EQ(msg, row.refusal);
    EXPECT_EQ(fresh.Transport(), facade::kNoTransport);
    EXPECT_EQ(fresh.FtpInfo().GetHostName(), "");
    EXPECT_EQ(row.call(fresh, "", &out, &msg), 1);
    EXPECT_EQ(msg, row.later);
    EXPECT_EQ(out, row.name[0] == 'Z' ? "" : "stale");  // the start-ups clear their output
  }
}

// UTL is chosen before connecting, so a failed validation still names it, and the statement
// document then needs the UTL connection. The start-up keeps what it was given.
TEST_F(SessionChecksTest, UtlMethodsRecordTheirChoiceThenFail) {
  EXPECT_EQ(service_.UtlValidation(0, 92, "", "p", "tns", "/d", "orcl", "1", &msg_), 1);
  EXPECT_EQ(msg_, kNoUtl);
  EXPECT_EQ(service_.Transport(), facade::kUtl);
  EXPECT_EQ(service_.ZantivGetTraceInfo("select", "9.2.0.4.0", &msg_), 1);
  EXPECT_EQ(msg_, kNoUtl);

  // Release 7 is refused before any client library is looked for.
  const std::uint64_t handle = 0x1234567890ULL;
  EXPECT_EQ(service_.ZantivUtlTrcStartUp(handle, 73, "scott", "tiger", "orcl", "/d", "orcl", "1",
                                         "marker", &out_, &msg_),
            1);
  EXPECT_EQ(msg_,
            "Oracle release 7.3 is not supported: the version 8 call interface (Oracle 8.0 or "
            "later) is needed.");
  EXPECT_EQ(service_.UtlInfo().oracle_handle, handle);  // full width
  EXPECT_EQ(service_.UtlInfo().user_name, "scott");
  EXPECT_EQ(service_.UtlInfo().dsn, "orcl");
  // A one-digit ver has no major number: the minor number plus one takes its place.
  EXPECT_EQ(service_.ZantivUtlTrcStartUp(0, 8, "", "", "", "/d", "", "", "", &out_, &msg_), 1);
  EXPECT_EQ(msg_, kNoUtl);
  EXPECT_EQ(service_.UtlInfo().release.major, 9);
  EXPECT_EQ(service_.UtlInfo().release.minor, 8);
}

// Before any validation or start-up there is nothing to read and nothing is written.
TEST_F(SessionChecksTest, StatementDocumentBeforeAnyStartUpIsHarmless) {
  AddTrace(root());
  EXPECT_EQ(service_.ZantivGetTraceInfo("select", "9.2.0.4.0", &msg_), 0);
  EXPECT_EQ(msg_, "OK");
  EXPECT_TRUE(fs::is_empty(work()));
  EXPECT_FALSE(fs::exists(root() / kXml));
}

}  // namespace
}  // namespace facade_test
