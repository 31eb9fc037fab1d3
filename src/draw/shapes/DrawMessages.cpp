// Speech bubbles.
#include "draw/shapes/DrawMessages.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "draw/shapes/RoundedOutline.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass DrawRectMessage::kClass{"DrawRectMessage", &DrawRectShape::kClass,
                                      NSAllocate<DrawRectMessage>};
const NSClass DrawEllipseMessage::kClass{"DrawEllipseMessage", &DrawRectShape::kClass,
                                         NSAllocate<DrawEllipseMessage>};

namespace {

constexpr const char* kRadius = "Radius";
constexpr const char* kArrow = "Arrow";
constexpr const char* kArrowA = "ArrowA";
constexpr const char* kArrowB = "ArrowB";

/// The base points of a tail are at least this far apart, measured along the outline.
constexpr CGFloat kMargin = 5;
/// What lies this close to the outline lies on it.
constexpr CGFloat kTolerance = 0.1;

NSPoint decodedPoint(NSCoder& coder, const char* key, NSPoint otherwise) {
  return coder.containsValueForKey(key) ? coder.decodePointForKey(key) : otherwise;
}

NSPoint finite(NSPoint p) {
  return {std::isfinite(p.x) ? p.x : 0, std::isfinite(p.y) ? p.y : 0};
}

NSPoint scaled(NSPoint p, const AxisMap& map) {
  return {p.x * map.xScale, p.y * map.yScale};
}

/// A tail in the frame of its box: `mouth` is the stretch of the outline that it replaces.
struct Tail {
  NSPoint tip;
  RoundedOutline::Stretch mouth;
};

RoundedOutline::Stretch within(CGFloat a, CGFloat b, const RoundedOutline::Stretch& limits,
                               CGFloat smallest) {
  CGFloat from = std::clamp(std::min(a, b), limits.from, limits.to);
  CGFloat to = std::clamp(std::max(a, b), limits.from, limits.to);
  const CGFloat gap = std::min(smallest, limits.to - limits.from);
  if (to - from < gap) {
    from = std::max(limits.from, std::min((from + to - gap) / 2, limits.to - gap));
    to = from + gap;
  }
  return {from, to};
}

/// The tail with its base points where lines to the tip cross the outline nowhere else. The rounded
/// box is convex: from outside, that holds for every two points of it that the tip sees; from
/// inside, for every two; and for a tip on the outline, for points on either side of it.
Tail fittedTail(const RoundedOutline& outline, NSPoint tip, NSPoint a, NSPoint b) {
  const CGFloat length = outline.length();
  const CGFloat smallest = std::min(kMargin, length / 8);
  const auto [facing, distance] = outline.nearest(tip);
  if (std::fabs(distance) <= kTolerance) {
    return {outline.pointAt(facing), {facing - smallest / 2, facing + smallest / 2}};
  }
  const auto position = [&, around = facing](NSPoint p) {
    const CGFloat onEdge = outline.clearOfCorners(outline.nearest(p).position);
    return around + std::remainder(onEdge - around, length);
  };
  const CGFloat atA = position(a), atB = position(b);
  if (distance > 0) {
    const auto seen = outline.visibleFrom(tip, facing, kTolerance / 2);
    const auto clear = outline.clearOfCorners(seen);
    return {tip, within(atA, atB, clear.to - clear.from >= smallest ? clear : seen, smallest)};
  }
  // Any two points do; the tail replaces the shorter way between them.
  const auto [from, to] = std::minmax(atA, atB);
  const bool wraps = to - from > length / 2;
  const RoundedOutline::Stretch anywhere{facing - length, facing + length};
  return {tip, within(wraps ? to : from, wraps ? from + length : to, anywhere, smallest)};
}

CGFloat cornerRadius(float fraction, NSSize box) {
  const CGFloat f = std::isfinite(fraction) ? std::clamp<CGFloat>(fraction, 0, 0.5) : 0;
  return static_cast<float>(std::min(0.5 * box.width, f * box.height));
}

}  // namespace

DrawRectMessage::Layout DrawRectMessage::getArrowPoint(const NSRect& withBounds) const {
  const NSSize box{std::max(NSWidth(withBounds), 1.0), std::max(NSHeight(withBounds), 1.0)};
  const CGFloat radius = cornerRadius(fRadius_, box);
  const RoundedOutline outline(box, radius);
  const Tail tail = fittedTail(outline, finite(ptArrow_), finite(ptArrowA_), finite(ptArrowB_));
  const auto placed = [o = withBounds.origin](NSPoint p) { return NSPoint{o.x + p.x, o.y + p.y}; };
  return {placed(tail.tip), placed(outline.pointAt(tail.mouth.to)),
          placed(outline.pointAt(tail.mouth.from)), static_cast<float>(radius),
          placed({radius, box.height - radius})};
}

void DrawRectMessage::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  const RoundedOutline outline(bounds.size, cornerRadius(fRadius_, bounds.size));
  const Tail tail = fittedTail(outline, finite(ptArrow_), finite(ptArrowA_), finite(ptArrowB_));
  const NSPoint o = bounds.origin;
  path.moveToPoint({o.x + tail.tip.x, o.y + tail.tip.y});
  outline.append(path, {tail.mouth.to, tail.mouth.from + outline.length()}, o);
  path.closePath();
}

void DrawRectMessage::mapGeometry(const AxisMap& map) {
  DrawRectShape::mapGeometry(map);
  ptArrow_ = scaled(ptArrow_, map);
  ptArrowA_ = scaled(ptArrowA_, map);
  ptArrowB_ = scaled(ptArrowB_, map);
}

void DrawRectMessage::setRadius(float fraction) {
  fRadius_ = fraction;
  rebuildOutline();
}

void DrawRectMessage::setArrow(NSPoint tip, NSPoint a, NSPoint b) {
  ptArrow_ = tip;
  ptArrowA_ = a;
  ptArrowB_ = b;
  rebuildOutline();
}

bool DrawRectMessage::initWithCoder(NSCoder& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  if (coder.containsValueForKey(kRadius)) fRadius_ = coder.decodeFloatForKey(kRadius);
  ptArrow_ = decodedPoint(coder, kArrow, ptArrow_);
  ptArrowA_ = decodedPoint(coder, kArrowA, ptArrowA_);
  ptArrowB_ = decodedPoint(coder, kArrowB, ptArrowB_);
  return true;
}

void DrawRectMessage::encodeWithCoder(NSCoder& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeFloat(fRadius_, kRadius);
  coder.encodePoint(ptArrow_, kArrow);
  coder.encodePoint(ptArrowA_, kArrowA);
  coder.encodePoint(ptArrowB_, kArrowB);
}

void DrawEllipseMessage::setArrow(NSPoint tip) {
  ptArrow_ = tip;
  rebuildOutline();
}

void DrawEllipseMessage::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  // On the unit circle the tail is symmetric about the tip's direction, so that its sides cross
  // the circle nowhere else, wherever the tip lies.
  constexpr CGFloat kHalfMouth = 13;
  const CGFloat a = NSWidth(bounds) / 2, b = NSHeight(bounds) / 2;
  const NSPoint offset = finite(ptArrow_);
  const NSPoint tip{(offset.x - a) / a, (offset.y - b) / b};
  const CGFloat degrees =
      tip == NSZeroPoint ? 270 : std::atan2(tip.y, tip.x) * 180 / std::numbers::pi;
  const auto bubble = NSBezierPath::bezierPath();
  bubble->moveToPoint(tip);
  bubble->appendBezierPathWithArcWithCenter(NSZeroPoint, 1, degrees + kHalfMouth,
                                            degrees - kHalfMouth);
  bubble->closePath();
  NSAffineTransform toBox;
  toBox.translateXBy(NSMidX(bounds), NSMidY(bounds));
  toBox.scaleXBy(a, b);
  bubble->transformUsingAffineTransform(toBox);
  path.appendBezierPath(*bubble);
}

void DrawEllipseMessage::mapGeometry(const AxisMap& map) {
  DrawRectShape::mapGeometry(map);
  ptArrow_ = scaled(ptArrow_, map);
}

bool DrawEllipseMessage::initWithCoder(NSCoder& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  ptArrow_ = decodedPoint(coder, kArrow, ptArrow_);
  return true;
}

void DrawEllipseMessage::encodeWithCoder(NSCoder& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodePoint(ptArrow_, kArrow);
}
