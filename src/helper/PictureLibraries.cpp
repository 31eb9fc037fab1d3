#include "helper/PictureLibraries.h"

#include <new>

#include "helper/PictureGuard.h"
#include "platform/machine/AddressSpace.h"
#include "platform/machine/LoadableModule.h"

namespace {

const PictureLibrary* loaded(const char* module) {
  // Libraries are not the picture's cost.
  liftMemoryLimit();
  const auto* const library = loadModuleLibrary<PictureLibrary>(module, kPictureLibraryEntry);
  // What stands behind a module may take that much; without it nobody can say what is installed.
  constexpr size_t kMostAddresses = size_t{256} << 20;
  if (library == nullptr && !hasAddressSpace(kMostAddresses)) throw std::bad_alloc();
  return library;
}

}  // namespace

const PictureLibrary* pictureLibrary(PictureKind kind) {
  switch (kind) {
    case PictureKind::pdf: {
      static const PictureLibrary* const pdf = loaded("paintpdf");
      return pdf;
    }
    case PictureKind::systemSVG: {
      static const PictureLibrary* const svg = loaded("paintsvg");
      return svg;
    }
    case PictureKind::builtInSVG:
      break;
  }
  static const PictureLibrary* const builtIn = loaded("paintbuiltinsvg");
  return builtIn;
}
