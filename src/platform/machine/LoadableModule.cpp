#include "platform/machine/LoadableModule.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <array>
#include <new>
#include <string>

#include "platform/machine/AddressSpace.h"

namespace {

// Below the folder of the shared library or program that this code is in.
constexpr const char* kModuleFolders[] = {"paintengine/",
                                          "../" PAINT_LIBRARY_FOLDER "/paintengine/"};

/// More than any module takes up with the libraries that it stands on.
constexpr size_t kMostAddresses = size_t{64} << 20;

std::string programPath() {
  std::array<char, 4096> path;
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : std::string();
}

/// Folder of the file that this code was loaded from, with a slash at the end. Worked out here and
/// not left to the loader's $ORIGIN, which is wrong where something (a sanitizer) wraps dlopen.
std::string ownFolder() {
  Dl_info info;
  link_map* map = nullptr;
  const int found = dladdr1(reinterpret_cast<const void*>(&loadModuleFunction), &info,
                            reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP);
  // The loader keeps the running program under an empty name.
  const bool inLibrary = found != 0 && map != nullptr && map->l_name[0] != '\0';
  const std::string path = inLibrary ? map->l_name : programPath();
  return path.substr(0, path.rfind('/') + 1);
}

}  // namespace

void* loadModuleFunction(const char* module, const char* function) {
  const std::string own = ownFolder();
  bool isThere = false;
  for (const char* folder : kModuleFolders) {
    const std::string path = own + folder + module + ".so";
    // Never unloaded: objects made by the module outlive any handle.
    if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
      return dlsym(handle, function);
    }
    isThere = isThere || access(path.c_str(), R_OK) == 0;
  }
  if (isThere && !hasAddressSpace(kMostAddresses)) throw std::bad_alloc();
  return nullptr;
}
