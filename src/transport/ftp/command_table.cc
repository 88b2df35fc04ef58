#include "transport/ftp/command_table.h"

#include "transport/ftp/ftp_codes.h"

namespace transport {
namespace {

struct ReplyResult {
  int reply;
  int result;
};
constexpr int kEnd = -2;

// Every row starts with the two answers that are not codes: none, and not a number.
constexpr ReplyResult kGreeting[] = {{-1, 2002}, {0, 3001},   {110, 0}, {120, 0},
                                     {220, 0},   {421, 1008}, {kEnd, 0}};
constexpr ReplyResult kUser[] = {{-1, 2002}, {0, 3001},   {220, 0}, {230, 0},
                                 {331, 1},   {421, 1008}, {kEnd, 0}};
constexpr ReplyResult kPass[] = {{-1, 2002},  {0, 3001},   {220, 0},    {230, 0},    {332, 2},
                                 {501, 3003}, {503, 3003}, {504, 3003}, {530, 1009}, {kEnd, 0}};
constexpr ReplyResult kAcct[] = {{-1, 2002}, {0, 3001},   {200, 0},    {202, 0},    {220, 0},
                                 {230, 0},   {500, 3003}, {503, 3003}, {530, 1009}, {kEnd, 0}};
constexpr ReplyResult kQuit[] = {{-1, 2002}, {0, 3001}, {200, 0}, {220, 0}, {221, 0}, {kEnd, 0}};
constexpr ReplyResult kHelp[] = {{-1, 2002}, {0, 3001},   {211, 0}, {214, 0},
                                 {220, 0},   {504, 3003}, {kEnd, 0}};
constexpr ReplyResult kFileAction[] = {{-1, 2002},  {0, 3001},   {200, 0},    {250, 0}, {450, 1014},
                                       {502, 3003}, {504, 3003}, {550, 1008}, {kEnd, 0}};
constexpr ReplyResult kMkd[] = {{-1, 2002},  {0, 3001},   {200, 0},    {227, 0},    {257, 0},
                                {502, 3003}, {504, 3003}, {521, 1008}, {550, 1008}, {kEnd, 0}};
constexpr ReplyResult kRmd[] = {{-1, 2002},  {0, 3001},   {200, 0},    {250, 0},    {257, 0},
                                {450, 1014}, {502, 3003}, {504, 3003}, {550, 1008}, {kEnd, 0}};
constexpr ReplyResult kPwd[] = {{-1, 2002},  {0, 3001},   {200, 0},    {257, 0},
                                {502, 3003}, {504, 3003}, {550, 1008}, {kEnd, 0}};
constexpr ReplyResult kType[] = {{-1, 2002},  {0, 3001},   {200, 0},    {502, 3003},
                                 {504, 3003}, {530, 3002}, {550, 3002}, {kEnd, 0}};
constexpr ReplyResult kRnfr[] = {{-1, 2002},  {0, 3001},   {350, 0},    {450, 1014},
                                 {502, 3003}, {504, 3003}, {550, 1010}, {kEnd, 0}};
constexpr ReplyResult kRnto[] = {{-1, 2002},  {0, 3001},   {250, 0},    {502, 3003},
                                 {504, 3003}, {550, 1008}, {553, 1008}, {kEnd, 0}};
constexpr ReplyResult kSyst[] = {{-1, 2002}, {0, 3001},   {200, 0},    {215, 0},
                                 {220, 0},   {502, 3003}, {504, 3003}, {kEnd, 0}};
constexpr ReplyResult kNoop[] = {{-1, 2002}, {0, 3001}, {200, 0}, {500, 3003}, {kEnd, 0}};
constexpr ReplyResult kRest[] = {{-1, 2002},  {0, 3001},   {350, 3}, {500, 3003},
                                 {502, 3003}, {504, 3003}, {kEnd, 0}};
constexpr ReplyResult kEndOfTransfer[] = {{-1, 2002},  {0, 3001},   {226, 0}, {250, 0},
                                          {421, 1008}, {552, 1005}, {kEnd, 0}};
// A server without TLS answers AUTH as a command it does not know ("500 AUTH not understood",
// proftpd), one with TLS switched off or forbidden by policy may say 431, 502, 504 or 534:
// each means that the session cannot be secured. PBSZ and PROT are refused alike (536: the
// protection level is not supported).
constexpr ReplyResult kAuth[] = {{-1, 2002},  {0, 3001},   {234, 0},    {421, 1008},
                                 {431, 3006}, {500, 3006}, {502, 3006}, {504, 3006},
                                 {530, 3006}, {534, 3006}, {kEnd, 0}};
constexpr ReplyResult kProtection[] = {{-1, 2002},  {0, 3001},   {200, 0},    {421, 1008},
                                       {500, 3006}, {502, 3006}, {503, 3006}, {504, 3006},
                                       {530, 3006}, {534, 3006}, {536, 3006}, {kEnd, 0}};

struct Row {
  const char* verb;  // null: the row sends nothing
  const ReplyResult* replies;
};

// Indexed by FtpCommand. MKD accepts 227 and RMD 257, as the client always has.
constexpr Row kRows[kCommandCount] = {
    {nullptr, kGreeting}, {"USER", kUser},       {"PASS", kPass},       {"ACCT", kAcct},
    {"QUIT", kQuit},      {"HELP", kHelp},       {"HELP", kHelp},       {"DELE", kFileAction},
    {"CWD", kFileAction}, {"CDUP", kFileAction}, {"MKD", kMkd},         {"RMD", kRmd},
    {"PWD", kPwd},        {"TYPE", kType},       {"RNFR", kRnfr},       {"RNTO", kRnto},
    {"SYST", kSyst},      {"NOOP", kNoop},       {"REST", kRest},       {nullptr, kEndOfTransfer},
    {"AUTH", kAuth},      {"PBSZ", kProtection}, {"PROT", kProtection},
};

bool TakesArgument(FtpCommand command) {
  switch (command) {
    case kCmdQuit:
    case kCmdHelp:
    case kCmdCdup:
    case kCmdPwd:
    case kCmdSyst:
    case kCmdNoop:
      return false;
    default:
      return true;
  }
}

}  // namespace

std::string CommandLine(FtpCommand command, const char* argument) {
  const Row& row = kRows[command];
  if (row.verb == nullptr) return std::string();
  std::string line = row.verb;
  if (TakesArgument(command)) {
    line += ' ';
    if (argument != nullptr) line += argument;
  }
  return line;
}

int MapReply(FtpCommand command, int reply_code) {
  for (const ReplyResult* entry = kRows[command].replies; entry->reply != kEnd; ++entry) {
    if (entry->reply == reply_code) return entry->result;
  }
  return kFtpUnexpectedAnswer;
}

}  // namespace transport
