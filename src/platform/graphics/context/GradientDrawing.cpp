#include "platform/graphics/context/GradientDrawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/graphics/pixels/outline/PathBounds.h"

namespace {

/// The unit vector of an angle, exact for multiples of 90 degrees.
NSPoint direction(CGFloat degrees) {
  const CGFloat turn = std::fmod(degrees, 360);
  const CGFloat quarters = turn / 90;
  if (quarters == std::floor(quarters)) {
    constexpr NSPoint kQuarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    return kQuarters[(static_cast<int>(quarters) + 4) % 4];
  }
  const CGFloat radians = turn * std::numbers::pi / 180;
  return {std::cos(radians), std::sin(radians)};
}

CGFloat heldWithinUnit(CGFloat v) {
  return std::isnan(v) ? 0 : std::clamp<CGFloat>(v, -1, 1);
}

}  // namespace

std::optional<LinearAxis> linearAxis(const NSRect& rect, CGFloat angle) {
  if (NSIsEmptyRect(rect) || !std::isfinite(angle)) return std::nullopt;
  const NSPoint u = direction(angle);
  const CGFloat half = (std::fabs(NSWidth(rect) * u.x) + std::fabs(NSHeight(rect) * u.y)) / 2;
  const NSPoint center{NSMidX(rect), NSMidY(rect)};
  return LinearAxis{{center.x - u.x * half, center.y - u.y * half},
                    {center.x + u.x * half, center.y + u.y * half}};
}

std::optional<LinearAxis> linearAxis(const PathData& path, CGFloat angle) {
  if (!std::isfinite(angle)) return std::nullopt;
  const auto bounds = tightPathBounds(path);
  const NSPoint u = direction(angle);
  const auto extent = pathExtentAlong(path, u);
  if (!bounds || !extent) return std::nullopt;
  const NSPoint center{NSMidX(*bounds), NSMidY(*bounds)};
  const CGFloat middle = center.x * u.x + center.y * u.y;
  const CGFloat before = extent->min - middle;
  const CGFloat after = extent->max - middle;
  return LinearAxis{{center.x + u.x * before, center.y + u.y * before},
                    {center.x + u.x * after, center.y + u.y * after}};
}

std::optional<RadialAxis> radialAxis(const NSRect& rect, NSPoint relativeCenter) {
  if (NSIsEmptyRect(rect)) return std::nullopt;
  const CGFloat halfWidth = NSWidth(rect) / 2;
  const CGFloat halfHeight = NSHeight(rect) / 2;
  const NSPoint start{NSMidX(rect), NSMidY(rect)};
  const CGFloat dx = heldWithinUnit(relativeCenter.x) * halfWidth;
  const CGFloat dy = heldWithinUnit(relativeCenter.y) * halfHeight;
  // The farthest corner lies on the other side of the middle.
  const CGFloat radius = std::hypot(halfWidth + std::fabs(dx), halfHeight + std::fabs(dy));
  return RadialAxis{start, 0, {start.x + dx, start.y + dy}, radius};
}

std::optional<RadialAxis> radialAxis(const PathData& path, NSPoint relativeCenter) {
  const auto bounds = tightPathBounds(path);
  return bounds ? radialAxis(*bounds, relativeCenter) : std::nullopt;
}

void drawGradientInRect(CGContext& context, const CGGradient& gradient, const NSRect& rect,
                        CGFloat angle) {
  if (const auto axis = linearAxis(rect, angle)) {
    context.fill(pathOfRect(rect), WindingRule::nonZero, gradient, *axis);
  }
}

void drawGradientInRect(CGContext& context, const CGGradient& gradient, const NSRect& rect,
                        NSPoint relativeCenterPosition) {
  if (const auto axis = radialAxis(rect, relativeCenterPosition)) {
    context.fill(pathOfRect(rect), WindingRule::nonZero, gradient, *axis);
  }
}

void drawGradientInBezierPath(CGContext& context, const CGGradient& gradient, const PathData& path,
                              WindingRule winding, CGFloat angle) {
  if (const auto axis = linearAxis(path, angle)) context.fill(path, winding, gradient, *axis);
}

void drawGradientInBezierPath(CGContext& context, const CGGradient& gradient, const PathData& path,
                              WindingRule winding, NSPoint relativeCenterPosition) {
  if (const auto axis = radialAxis(path, relativeCenterPosition)) {
    context.fill(path, winding, gradient, *axis);
  }
}
