// A shared library loaded at run time (dlopen, or LoadLibraryA on Windows) and the entry points
// looked up in it. The library stays loaded as long as the object lives.
#ifndef PELICOR_SUPPORT_OS_SHARED_LIBRARY_H_
#define PELICOR_SUPPORT_OS_SHARED_LIBRARY_H_

#include <string>

namespace os {

class SharedLibrary {
 public:
  // The generic form of an entry point; callers cast it to the function's real type.
  using Symbol = void (*)();

  SharedLibrary() = default;
  ~SharedLibrary();
  SharedLibrary(SharedLibrary&& other) noexcept;
  SharedLibrary& operator=(SharedLibrary&& other) noexcept;
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;

  // Loads `name` (a bare name goes through the loader's own search: LD_LIBRARY_PATH on Linux,
  // the DLL search order on Windows). False with the loader's own text in *error on failure.
  bool Open(const std::string& name, std::string* error);
  bool IsOpen() const { return handle_ != nullptr; }
  // The entry point `name`, or null when the library does not export it.
  Symbol Find(const char* name) const;
  void Close() noexcept;

 private:
  void* handle_ = nullptr;
};

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_SHARED_LIBRARY_H_
