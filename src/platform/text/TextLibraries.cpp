#include "platform/text/TextLibraries.h"

#include "platform/machine/LoadableModule.h"

const TextLibraries* textLibraries() {
  static const TextLibraries* const libraries = [] {
    const auto entry =
        reinterpret_cast<TextLibrariesEntry>(loadModuleFunction("painttext", kTextLibrariesEntry));
    return entry == nullptr ? nullptr : entry();
  }();
  thread_local bool isPrepared = false;
  if (libraries != nullptr && !isPrepared) {
    libraries->prepareThread();
    isPrepared = true;
  }
  return libraries;
}
