#include "platform/text/TextLibraries.h"

#include "platform/machine/LoadableModule.h"

const TextLibraries* textLibraries() {
  static const auto* const libraries =
      loadModuleLibrary<TextLibraries>("painttext", kTextLibrariesEntry);
  thread_local bool isPrepared = false;
  if (libraries != nullptr && !isPrepared) {
    libraries->prepareThread();
    isPrepared = true;
  }
  return libraries;
}
