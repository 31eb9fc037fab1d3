#include "platform/machine/OwnFolder.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <array>

namespace {

std::string programPath() {
  std::array<char, 4096> path;
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : std::string();
}

}  // namespace

// Worked out here and not left to the loader's $ORIGIN, which is wrong where something (a
// sanitizer) wraps dlopen.
std::string ownFolder() {
  Dl_info info;
  link_map* map = nullptr;
  const int found = dladdr1(reinterpret_cast<const void*>(&ownFolder), &info,
                            reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP);
  // The loader keeps the running program under an empty name.
  const bool inLibrary = found != 0 && map != nullptr && map->l_name[0] != '\0';
  const std::string path = inLibrary ? map->l_name : programPath();
  return path.substr(0, path.rfind('/') + 1);
}
