#include "support/exceptions.h"

#include <utility>

#include "support/activity_log.h"

namespace exceptions {

namespace {

// Every exception is logged once, when it is made, whether or not anybody reports it later.
void LogConstruction(const std::string& file, const std::string& class_name,
                     const std::string& method, const std::string& message) {
  if (!support::ActivityLog::IsEnabled()) return;
  support::ActivityRecord record("ExceptionBase", "exceptions::ExceptionBase",
                                 "ExceptionBase (Constructor)");
  record.Add(file + " - " + class_name + " - " + method + " - " + message);
}

}  // namespace

ExceptionBase::ExceptionBase(std::string file, std::string class_name, std::string method,
                             std::string message) {
  LogConstruction(file, class_name, method, message);
  file_ = std::move(file);
  class_ = std::move(class_name);
  method_ = std::move(method);
  message_ = std::move(message);
}

void ExceptionBase::SetOracleError(std::int32_t code, std::string text) {
  error_code_ = code;
  message_ = std::move(text);
  category_ = OracleException::kCategory;
}

OracleException::OracleException(OracleErrorSource& handle, std::string file,
                                 std::string class_name, std::string method)
    : ExceptionBase(std::move(file), std::move(class_name), std::move(method), std::string()) {
  std::string text;
  const std::int32_t code = handle.LastError(&text);
  SetOracleError(code, std::move(text));
  handle.ResetError();
}

}  // namespace exceptions
