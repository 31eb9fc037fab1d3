#include "platform/graphics/GraphicsClasses.h"

#include "platform/graphics/NSAffineTransform.h"
#include "platform/graphics/NSBezierPath.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSColor.h"
#include "platform/graphics/NSColorSpace.h"
#include "platform/graphics/NSGradient.h"
#include "platform/graphics/NSImage.h"
#include "platform/graphics/NSShadow.h"

void registerGraphicsClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSAffineTransform::kClass, &NSBezierPath::kClass,
                                                  &NSBitmapImageRep::kClass,  &NSColor::kClass,
                                                  &NSColorSpace::kClass,      &NSGradient::kClass,
                                                  &NSShadow::kClass,          &NSImage::kClass};
    NSRegisterClasses(kClasses);
    NSRegisterClasses(otherImageRepClasses());
    return true;
  }();
  static_cast<void>(registered);
}
