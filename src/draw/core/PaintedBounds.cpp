#include "draw/core/PaintedBounds.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "draw/core/DrawBase.h"
#include "draw/core/ReflectionLimits.h"
#include "platform/graphics/context/NSShadow.h"

namespace {

/// How far joins, caps, heads, outlines and moves to whole pixels reach beyond the path.
CGFloat overhang(const DrawBase& draw) {
  constexpr CGFloat kSquareCap = 1.5, kHead = 4;
  // To whole pixels: half a pixel, and one more on negative coordinates.
  constexpr CGFloat kShift = 1.5;
  const CGFloat shift = draw.rotateDegree() == 0 ? kShift : kShift * std::numbers::sqrt2;
  if (!draw.drawStroke() && !draw.hasStrokeOutline()) return shift;
  const NSBezierPath& path = *draw.bezierPath();
  const CGFloat outline =
      draw.enableStrokeOutline() ? std::max<CGFloat>(draw.strokeOutlineWidth(), 0) : 0;
  const bool miters = path.lineJoinStyle() == LineJoin::miter || outline > 0;
  const CGFloat reach = std::max(kSquareCap, miters ? path.miterLimit() : 0);
  const CGFloat line = path.lineWidth() * std::max(reach / 2, draw.arrowStyle() != 0 ? kHead : 0);
  return shift + 0.5 + line + reach * outline;
}

/// Bounds of the turned bounds of the path: a picture fills these, whatever its path.
NSRect turnedBounds(const DrawBase& draw) {
  const auto rect = NSBezierPath::bezierPathWithRect(draw.pathBounds());
  rect->transformUsingAffineTransform(draw.transform());
  return rect->bounds();
}

NSRect shadowBounds(const NSRect& caster, const NSShadow& shadow) {
  const CGFloat blur = std::ceil(std::max<CGFloat>(shadow.shadowBlurRadius(), 0)) + 1;
  const NSSize offset = shadow.shadowOffset();
  return NSInsetRect(NSOffsetRect(caster, offset.width, offset.height), -blur, -blur);
}

/// The strip that shows the reflection.
NSRect reflectionBounds(const DrawBase& draw) {
  const NSRect shape = draw.drawRect();
  const auto distance =
      static_cast<CGFloat>(std::max(draw.reflectionDis(), kLowestReflectionDistance));
  const CGFloat height = NSHeight(shape) * static_cast<CGFloat>(std::min(draw.reflection(), 1.0F));
  return NSInsetRect(
      NSMakeRect(NSMinX(shape), NSMinY(shape) - distance - height, NSWidth(shape), height), -1, -1);
}

}  // namespace

NSRect paintedBounds(const DrawBase& draw) {
  if (draw.bezierPath() == nullptr || draw.bezierPath()->isEmpty()) return NSZeroRect;
  const CGFloat margin = overhang(draw);
  const NSRect shape = NSInsetRect(turnedBounds(draw), -margin, -margin);
  NSRect bounds = shape;
  if (draw.enableShadow() && draw.shadow() != nullptr) {
    bounds = NSUnionRect(bounds, shadowBounds(shape, *draw.shadow()));
  }
  if (draw.enableReflection() && draw.reflection() > 0) {
    bounds = NSUnionRect(bounds, reflectionBounds(draw));
  }
  return bounds;
}
