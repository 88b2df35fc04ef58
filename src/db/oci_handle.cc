#include "db/oci_handle.h"

namespace db {

OciHandle AllocateHandle(const OciFunctions& api, const void* parent, oci::ub4 type,
                         oci::sword* status) {
  void* handle = nullptr;
  *status = api.OCIHandleAlloc(parent, &handle, type, 0, nullptr);
  if (*status != oci::OCI_SUCCESS) return OciHandle();
  return OciHandle(&api, handle, type);
}

}  // namespace db
