#include "support/os/shared_library.h"

#include <cstring>
#include <utility>

#ifdef _WIN32
#include <windows.h>

#include "support/os/system_error_text.h"
#else
#include <dlfcn.h>
#endif

namespace os {

SharedLibrary::~SharedLibrary() {
  Close();
}

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

#ifdef _WIN32

bool SharedLibrary::Open(const std::string& name, std::string* error) {
  Close();
  HMODULE module = LoadLibraryA(name.c_str());
  if (module == nullptr) {
    if (error) *error = LastErrorText();
    return false;
  }
  handle_ = reinterpret_cast<void*>(module);
  return true;
}

SharedLibrary::Symbol SharedLibrary::Find(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  FARPROC address = GetProcAddress(static_cast<HMODULE>(handle_), name);
  Symbol symbol = nullptr;
  static_assert(sizeof symbol == sizeof address);
  std::memcpy(&symbol, &address, sizeof symbol);
  return symbol;
}

void SharedLibrary::Close() noexcept {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
  handle_ = nullptr;
}

#else

bool SharedLibrary::Open(const std::string& name, std::string* error) {
  Close();
  handle_ = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* text = dlerror();
    if (error) *error = text ? text : "unknown loader error";
    return false;
  }
  return true;
}

SharedLibrary::Symbol SharedLibrary::Find(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  void* address = dlsym(handle_, name);
  // POSIX guarantees that a data pointer from dlsym can hold a function's address; copying the
  // bytes avoids a cast that ISO C++ leaves conditionally supported.
  Symbol symbol = nullptr;
  static_assert(sizeof symbol == sizeof address);
  std::memcpy(&symbol, &address, sizeof symbol);
  return symbol;
}

void SharedLibrary::Close() noexcept {
  if (handle_ != nullptr) dlclose(handle_);
  handle_ = nullptr;
}

#endif

}  // namespace os
