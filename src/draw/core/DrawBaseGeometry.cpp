// The rectangles a draw covers, and moving and scaling it.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "draw/core/DrawBase.h"
#include "draw/core/ReflectionLimits.h"
#include "draw/core/ZTArrowPathInfo.h"
#include "platform/graphics/context/NSShadow.h"

namespace {

NSRect outset(const NSRect& r, CGFloat amount) {
  return NSInsetRect(r, -amount, -amount);
}

NSRect transformedBounds(const NSBezierPath& path, const NSAffineTransform& transform) {
  if (transform.isIdentity()) return path.bounds();
  const auto copy = path.copy();
  copy->transformUsingAffineTransform(transform);
  return copy->bounds();
}

/// Bounds of a path that may lie on one line, so that they may be empty in the rectangle sense.
NSRect united(const NSRect& a, const NSRect& b) {
  const CGFloat x = std::min(NSMinX(a), NSMinX(b));
  const CGFloat y = std::min(NSMinY(a), NSMinY(b));
  return NSMakeRect(x, y, std::max(NSMaxX(a), NSMaxX(b)) - x, std::max(NSMaxY(a), NSMaxY(b)) - y);
}

}  // namespace

NSRect DrawBase::drawRect() const {
  if (bezierPath_ == nullptr || bezierPath_->isEmpty()) return NSZeroRect;
  const NSAffineTransform rotation = transform();
  NSRect rect = transformedBounds(*bezierPath_, rotation);
  if (!drawStroke()) return rect;
  const CGFloat outline = _enableStrokeOutline ? static_cast<CGFloat>(_strokeOutlineWidth) : 0;
  const CGFloat margin = bezierPath_->lineWidth() / 2 + outline;
  rect = outset(rect, margin);

  const auto arrows = getArrowInfoWithStyle(*bezierPath_, arrowStyle());
  if (arrows == nullptr) return rect;
  std::optional<NSRect> heads;
  for (const auto& head : {arrows->startArrowPath(), arrows->endArrowPath()}) {
    if (head == nullptr) continue;
    const NSRect bounds = transformedBounds(*head, rotation);
    heads = heads ? united(*heads, bounds) : bounds;
  }
  if (!heads) return rect;
  if (arrows->hadAdjustBezierPath()) rect = outset(arrows->adjustedBezierPath()->bounds(), margin);
  return united(rect, outset(*heads, static_cast<CGFloat>(_strokeOutlineWidth)));
}

NSRect DrawBase::renderedRect() const {
  NSRect rect = drawRect();
  if (hasShadowInForce()) {
    const NSSize offset = shadow_->shadowOffset();
    NSRect cast = NSOffsetRect(rect, offset.width, offset.height);
    if (shadow_->shadowBlurRadius() > 0) cast = outset(cast, shadow_->shadowBlurRadius());
    rect = NSUnionRect(rect, cast);
  }
  if (bEnableReflection_ && fReflection_ > 0) {
    const auto distance =
        static_cast<CGFloat>(std::max(fReflectionDis_, kLowestReflectionDistance));
    // At least the full height is reserved, that of the shadow too, although the picture shows at
    // most the draw's.
    const auto height =
        static_cast<CGFloat>(static_cast<float>(std::max(fReflection_, 1.0F) * NSHeight(rect)));
    rect = NSUnionRect(
        rect, NSMakeRect(NSMinX(rect), NSMinY(rect) - distance - height, NSWidth(rect), height));
  }
  return NSIntegralRect(rect);
}

void DrawBase::mapGeometry(const AxisMap& map) {
  if (bezierPath_ == nullptr) return;
  NSAffineTransform t;
  t.translateXBy(map.dx, map.dy);
  t.scaleXBy(map.xScale, map.yScale);
  bezierPath_->transformUsingAffineTransform(t);
  bezierPath_->roundToArchivedPrecision();
}

void DrawBase::moveByX(CGFloat x, CGFloat y) {
  mapGeometry({1, 1, x, y});
}

void DrawBase::scaleByX(CGFloat x, CGFloat y, NSPoint withCenter, ResizeLineWidth resizeLineWidth) {
  // The centre of rotation goes where the canvas goes; around it the draw's own axes are scaled.
  const NSPoint center = DrawBase::rotateCenter();
  const CGFloat turn = static_cast<CGFloat>(fRotateDegree_) * std::numbers::pi / 180;
  const CGFloat along = std::cos(turn), across = std::sin(turn);
  AxisMap map{x, y, 0, 0};
  if (fRotateDegree_ != 0) {
    map.xScale = std::hypot(x * along, y * across);
    map.yScale = std::hypot(x * across, y * along);
  }
  map.dx = withCenter.x + (center.x - withCenter.x) * x - center.x * map.xScale;
  map.dy = withCenter.y + (center.y - withCenter.y) * y - center.y * map.yScale;
  mapGeometry(map);
  if (resizeLineWidth == ResizeLineWidth::yes)
    setLineWidth(lineWidth() * std::sqrt(std::fabs(x * y)));
}
