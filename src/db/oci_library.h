// The Oracle client library, loaded at run time, and the OCI entry points Pelicor calls in it.
// POSIX loads "libclntsh.so" through the loader's search (LD_LIBRARY_PATH, so
// $ORACLE_HOME/lib or an Instant Client folder), Windows "oci.dll"; the environment variable
// PELICOR_OCI_LIBRARY names another file or path.
#ifndef PELICOR_DB_OCI_LIBRARY_H_
#define PELICOR_DB_OCI_LIBRARY_H_

#include <memory>
#include <string>

#include "db/oci_api.h"
#include "support/os/shared_library.h"

namespace db {

// The entry points, all present once a library has loaded.
struct OciFunctions {
  oci::OCIEnvCreateFn OCIEnvCreate = nullptr;
  oci::OCIHandleAllocFn OCIHandleAlloc = nullptr;
  oci::OCIHandleFreeFn OCIHandleFree = nullptr;
  oci::OCIAttrGetFn OCIAttrGet = nullptr;
  oci::OCIAttrSetFn OCIAttrSet = nullptr;
  oci::OCIErrorGetFn OCIErrorGet = nullptr;
  oci::OCILogonFn OCILogon = nullptr;
  oci::OCILogoffFn OCILogoff = nullptr;
  oci::OCIStmtPrepareFn OCIStmtPrepare = nullptr;
  oci::OCIStmtExecuteFn OCIStmtExecute = nullptr;
  oci::OCIStmtFetch2Fn OCIStmtFetch2 = nullptr;
  oci::OCIDefineByPosFn OCIDefineByPos = nullptr;
  oci::OCIBindByNameFn OCIBindByName = nullptr;
};

class OciLibrary {
 public:
  static constexpr const char* kOverrideVariable = "PELICOR_OCI_LIBRARY";

  // Loads the client library and looks up every entry point. A library that does not load
  // throws "Could not load the Oracle client library <name>: <loader's text>"; a missing entry
  // point throws a RuntimeException whose message is
  // "\n\nCould not load Oracle OCI function: " followed by the function's name.
  static std::shared_ptr<const OciLibrary> Load();
  // The name Load() uses: the override when set and not empty, else the platform's own.
  static std::string LibraryName();

  const OciFunctions& Api() const { return api_; }

  OciLibrary(const OciLibrary&) = delete;
  OciLibrary& operator=(const OciLibrary&) = delete;

 private:
  OciLibrary() = default;
  void Resolve();

  os::SharedLibrary library_;
  OciFunctions api_;
};

}  // namespace db

#endif  // PELICOR_DB_OCI_LIBRARY_H_
