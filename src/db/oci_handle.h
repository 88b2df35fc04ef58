// One OCI handle owned by us, freed with OCIHandleFree when the object goes.
#ifndef PELICOR_DB_OCI_HANDLE_H_
#define PELICOR_DB_OCI_HANDLE_H_

#include <utility>

#include "db/oci_api.h"
#include "db/oci_library.h"

namespace db {

class OciHandle {
 public:
  OciHandle() = default;
  OciHandle(const OciFunctions* api, void* handle, oci::ub4 type)
      : api_(api), handle_(handle), type_(type) {}
  ~OciHandle() { Reset(); }
  OciHandle(OciHandle&& other) noexcept
      : api_(other.api_), handle_(std::exchange(other.handle_, nullptr)), type_(other.type_) {}
  OciHandle& operator=(OciHandle&& other) noexcept {
    if (this != &other) {
      Reset();
      api_ = other.api_;
      handle_ = std::exchange(other.handle_, nullptr);
      type_ = other.type_;
    }
    return *this;
  }
  OciHandle(const OciHandle&) = delete;
  OciHandle& operator=(const OciHandle&) = delete;

  template <typename T>
  T* get() const {
    return static_cast<T*>(handle_);
  }
  void Reset() noexcept {
    if (handle_ != nullptr) api_->OCIHandleFree(handle_, type_);
    handle_ = nullptr;
  }

 private:
  const OciFunctions* api_ = nullptr;
  void* handle_ = nullptr;
  oci::ub4 type_ = 0;
};

// Allocates a handle of `type` under `parent`; null on failure (the caller raises).
OciHandle AllocateHandle(const OciFunctions& api, const void* parent, oci::ub4 type,
                         oci::sword* status);

}  // namespace db

#endif  // PELICOR_DB_OCI_HANDLE_H_
