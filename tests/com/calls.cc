#include "calls.h"

namespace com_test {

const std::vector<MethodInfo>& Methods() {
  // Slot order; the ids hosts and scripts depend on (no 16, 22 and 23 swapped).
  static const std::vector<MethodInfo> methods = {
      {"FtpGetTraceFileList", 4, false},
      {"FtpGetTraceFile", 5, false},
      {"NfsGetTraceFile", 3, false},
      {"FtpSetConnectInfo", 6, false},
      {"ParseFile", 7, true},
      {"FtpParseFile", 8, true},
      {"NfsParseFile", 9, true},
      {"NfsSetConnectInfo", 10, false},
      {"NfsGetTraceFileList", 11, false},
      {"SetWorkingDir", 12, false},
      {"SetSortOption", 13, false},
      {"FtpGetTraceFilePID", 14, true},
      {"NfsGetTraceFilePID", 15, true},
      {"ParseFileEx", 17, true},
      {"FtpParseFileEx", 18, true},
      {"NfsParseFileEx", 19, true},
      {"ZantivFtpTrcStartUp", 20, true},
      {"ZantivNfsTrcStartUp", 21, true},
      {"ZantivUtlTrcStartUp", 23, true},
      {"ZantivGetTraceInfo", 22, false},
      {"FtpValidation", 24, false},
      {"NfsValidation", 25, false},
      {"UtlValidation", 26, false},
      {"FtpGetTraceFileListPID", 27, false},
      {"NfsGetTraceFileListPID", 28, false},
  };
  return methods;
}

const MethodInfo* FindMethod(const std::string& name) {
  for (const MethodInfo& method : Methods()) {
    if (name == method.name) return &method;
  }
  return nullptr;
}

std::wstring Widen(const std::string& text) {
  if (text.empty()) return std::wstring();
  const int length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, &wide[0], size);
  return wide;
}

std::string Narrow(const wchar_t* text, UINT length) {
  if (text == nullptr || length == 0) return std::string();
  const int wide_length = static_cast<int>(length);
  const int size = WideCharToMultiByte(CP_ACP, 0, text, wide_length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, wide_length, &narrow[0], size, nullptr, nullptr);
  return narrow;
}

}  // namespace com_test
