#include "draw/text/TextDrawClasses.h"

#include "draw/text/DrawText.h"

const NSClass DrawText::kClass{"DrawText", &DrawRoundRectangle::kClass, NSAllocate<DrawText>};
const NSClass DrawBezierText::kClass{"DrawBezierText", &DrawText::kClass,
                                     NSAllocate<DrawBezierText>};

void registerTextDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawText::kClass, &DrawBezierText::kClass};
  NSRegisterClasses(kClasses);
}
