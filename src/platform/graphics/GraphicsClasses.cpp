#include "platform/graphics/GraphicsClasses.h"

#include "platform/graphics/bitmap/BitmapArchives.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/bitmap/NSImage.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/color/NSColorSpace.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "platform/graphics/path/NSBezierPath.h"

void registerGraphicsClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSAffineTransform::kClass, &NSBezierPath::kClass,
                                                  &EncodedBitmap::kClass,     &NSColor::kClass,
                                                  &NSColorSpace::kClass,      &NSGradient::kClass,
                                                  &NSShadow::kClass,          &NSImage::kClass};
    NSRegisterClasses(kClasses);
    NSRegisterClasses(otherImageRepClasses());
    return true;
  }();
  static_cast<void>(registered);
}
