#include "draw/shapes/ShapeDrawClasses.h"

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawMessages.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/DrawRectangle.h"
#include "draw/shapes/FixedOutlines.h"

void registerShapeDrawClasses() {
  static const NSClass* const kClasses[] = {
      &DrawRectangle::kClass,   &DrawRoundRectangle::kClass, &DrawEllipse::kClass,
      &DrawGradient::kClass,    &DrawRectShape::kClass,      &DrawRectPolygon::kClass,
      &DrawRectStar::kClass,    &DrawRectMessage::kClass,    &DrawEllipseMessage::kClass,
      &DrawLine::kClass,        &DrawCurve::kClass,          &DrawBrokenLine::kClass,
      &DrawFreePolygon::kClass, &DrawBezierPath::kClass};
  NSRegisterClasses(kClasses);
  for (size_t i = 0; i < kFixedOutlineCount; ++i) {
    const NSClass* const fixedShape = &DrawFixedShape::classAt(i);
    NSRegisterClasses({&fixedShape, 1});
  }
}
