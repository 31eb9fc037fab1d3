#include "document/DocumentClasses.h"

#include <mutex>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/core/DrawClasses.h"
#include "draw/image/ImageDrawClasses.h"
#include "draw/raster/RasterDrawClasses.h"
#include "draw/shapes/ShapeDrawClasses.h"
#include "draw/text/TextDrawClasses.h"
#include "platform/graphics/GraphicsClasses.h"

void registerDocumentClasses() {
  static std::once_flag once;
  std::call_once(once, [] {
    static const NSClass* const kClasses[] = {&PaintManager::kClass, &DrawBase::kClass,
                                              &DrawGroup::kClass};
    NSRegisterClasses(kClasses);
    registerGraphicsClasses();
    registerShapeDrawClasses();
    registerTextDrawClasses();
    registerRasterDrawClasses();
    registerImageDrawClasses();
  });
}

// Groups hold draws of every family.
void registerDrawClasses() {
  registerDocumentClasses();
}
