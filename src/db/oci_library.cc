#include "db/oci_library.h"

#include <cstdlib>
#include <utility>

#include "support/exceptions.h"

namespace db {

namespace {

constexpr const char* kFile = "OciLibrary";
constexpr const char* kClass = "db::OciLibrary";

#ifdef _WIN32
constexpr const char* kDefaultName = "oci.dll";
#else
constexpr const char* kDefaultName = "libclntsh.so";
#endif

template <typename Function>
void Take(const os::SharedLibrary& library, const char* name, Function* target) {
  const os::SharedLibrary::Symbol symbol = library.Find(name);
  if (symbol == nullptr) {
    throw exceptions::RuntimeException(exceptions::ExceptionBase(
        kFile, kClass, name, std::string("\n\nCould not load Oracle OCI function: ") + name));
  }
  // Every entry point is looked up as `void (*)()`; this turns it back into its real type.
  *target = reinterpret_cast<Function>(symbol);
}

}  // namespace

std::string OciLibrary::LibraryName() {
  const char* chosen = std::getenv(kOverrideVariable);
  return chosen != nullptr && *chosen != '\0' ? chosen : kDefaultName;
}

std::shared_ptr<const OciLibrary> OciLibrary::Load() {
  std::shared_ptr<OciLibrary> loaded(new OciLibrary());
  const std::string name = LibraryName();
  std::string error;
  if (!loaded->library_.Open(name, &error)) {
    throw exceptions::ExceptionBase(
        kFile, kClass, "Load", "Could not load the Oracle client library " + name + ": " + error);
  }
  loaded->Resolve();
  return loaded;
}

void OciLibrary::Resolve() {
#define PELICOR_TAKE_OCI(function) Take(library_, #function, &api_.function)
  PELICOR_TAKE_OCI(OCIEnvCreate);
  PELICOR_TAKE_OCI(OCIHandleAlloc);
  PELICOR_TAKE_OCI(OCIHandleFree);
  PELICOR_TAKE_OCI(OCIAttrGet);
  PELICOR_TAKE_OCI(OCIAttrSet);
  PELICOR_TAKE_OCI(OCIErrorGet);
  PELICOR_TAKE_OCI(OCILogon);
  PELICOR_TAKE_OCI(OCILogoff);
  PELICOR_TAKE_OCI(OCIStmtPrepare);
  PELICOR_TAKE_OCI(OCIStmtExecute);
  PELICOR_TAKE_OCI(OCIStmtFetch2);
  PELICOR_TAKE_OCI(OCIDefineByPos);
  PELICOR_TAKE_OCI(OCIBindByName);
#undef PELICOR_TAKE_OCI
}

}  // namespace db
