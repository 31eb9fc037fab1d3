#include "platform/graphics/GraphicsClasses.h"

#include "platform/graphics/NSColor.h"
#include "platform/graphics/NSColorSpace.h"

void registerGraphicsClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSColor::kClass, &NSColorSpace::kClass};
    NSRegisterClasses(kClasses);
    return true;
  }();
  static_cast<void>(registered);
}
