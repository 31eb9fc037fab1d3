#include "draw/text/TextDrawClasses.h"

#include "draw/text/DrawBezierText.h"
#include "platform/text/host/TextClasses.h"

void registerTextDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawText::kClass, &DrawBezierText::kClass};
  NSRegisterClasses(kClasses);
  registerTextClasses();
}
