#include "draw/text/TextDrawClasses.h"

#include "draw/text/DrawBezierText.h"
#include "platform/text/TextClasses.h"

const NSClass DrawBezierText::kClass{"DrawBezierText", &DrawText::kClass,
                                     NSAllocate<DrawBezierText>};

void registerTextDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawText::kClass, &DrawBezierText::kClass};
  NSRegisterClasses(kClasses);
  registerTextClasses();
}
