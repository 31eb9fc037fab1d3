#include "platform/machine/LoadableModule.h"

#include <dlfcn.h>
#include <unistd.h>

#include <new>
#include <string>

#include "platform/machine/AddressSpace.h"
#include "platform/machine/OwnFolder.h"

namespace {

// Seen from the shared library, from a program, from the picture helper and from a module.
constexpr const char* kModuleFolders[] = {
    "paintengine/", "../" PAINT_LIBRARY_FOLDER "/paintengine/",
    PAINT_LIBRARY_FROM_HELPER "/paintengine/", "../paintengine/"};

/// More than any module takes up with the libraries that it stands on.
constexpr size_t kMostAddresses = size_t{64} << 20;

}  // namespace

void* loadModuleFunction(const char* module, const char* function) {
  const std::string own = ownFolder();
  bool isThere = false;
  for (const char* folder : kModuleFolders) {
    const std::string path = own + folder + module + ".so";
    // Never unloaded: objects made by the module outlive any handle.
    if (void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE)) {
      return dlsym(handle, function);
    }
    isThere = isThere || access(path.c_str(), R_OK) == 0;
  }
  if (isThere && !hasAddressSpace(kMostAddresses)) throw std::bad_alloc();
  return nullptr;
}
