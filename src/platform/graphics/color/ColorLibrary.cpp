#include "platform/graphics/color/ColorLibrary.h"

#include "platform/machine/AddressSpace.h"
#include "platform/machine/LoadableModule.h"

namespace {

const ColorLibrary* colorLibrary() {
  static const auto* const library =
      loadModuleLibrary<ColorLibrary>("paintcolor", kColorLibraryEntry);
  return library;
}

}  // namespace

std::unique_ptr<ColorTransform> openColorTransform(std::span<const uint8_t> icc, SampleForm form) {
  const ColorLibrary* const library = colorLibrary();
  if (library == nullptr) return nullptr;
  // It does not tell malformed profiles from want of memory.
  requireAddressSpace(kLibraryTables + icc.size());
  return library->open(icc, form);
}
