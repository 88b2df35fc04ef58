// The one exception family of Pelicor. Every failure inside the library is thrown by value as an
// ExceptionBase (or one of its two derived classes) and caught by reference at the facade, which
// hands the message alone to the caller; file, class and method reach only the activity log.
//
// The family deliberately does not derive from std::exception: a catch of std::exception in a
// front end must never swallow one of ours before the facade has turned it into a message.
#ifndef PELICOR_SUPPORT_EXCEPTIONS_H_
#define PELICOR_SUPPORT_EXCEPTIONS_H_

#include <cstdint>
#include <string>

namespace exceptions {

class ExceptionBase {
 public:
  // Copies the four texts; status, error code and category are 0. When the activity log is on,
  // the construction writes one record (file - class - method - message) to it.
  ExceptionBase(std::string file, std::string class_name, std::string method, std::string message);
  ExceptionBase(const ExceptionBase&) = default;
  ExceptionBase(ExceptionBase&&) = default;
  ExceptionBase& operator=(const ExceptionBase&) = default;
  ExceptionBase& operator=(ExceptionBase&&) = default;
  virtual ~ExceptionBase() = default;

  // The text shown to the caller; the only field the facade reads.
  std::string Message() const { return message_; }

  const std::string& File() const noexcept { return file_; }
  const std::string& ClassName() const noexcept { return class_; }
  const std::string& Method() const noexcept { return method_; }
  std::int32_t Status() const noexcept { return status_; }
  std::int32_t ErrorCode() const noexcept { return error_code_; }
  std::int32_t Category() const noexcept { return category_; }

 protected:
  void SetOracleError(std::int32_t code, std::string text);

 private:
  std::int32_t status_ = 0;
  std::string file_;
  std::string class_;
  std::string method_;
  std::string message_;
  std::int32_t error_code_ = 0;
  std::int32_t category_ = 0;
};

// An object of the Oracle access layer that can report its last error.
class OracleErrorSource {
 public:
  virtual ~OracleErrorSource() = default;
  // Fills `text` with the last error's text and returns its Oracle error code.
  virtual std::int32_t LastError(std::string* text) = 0;
  // Forgets the last error (its status becomes 0).
  virtual void ResetError() = 0;
};

// Carries the Oracle error text unchanged as its message, the code as its error code, category 3.
class OracleException : public ExceptionBase {
 public:
  static constexpr std::int32_t kCategory = 3;
  OracleException(OracleErrorSource& handle, std::string file, std::string class_name,
                  std::string method);
};

// Failures of the run-time environment: a missing OCI entry point, a mutex, memory statistics.
class RuntimeException : public ExceptionBase {
 public:
  explicit RuntimeException(const ExceptionBase& raised) : ExceptionBase(raised) {}
};

}  // namespace exceptions

#endif  // PELICOR_SUPPORT_EXCEPTIONS_H_
