// Arrow heads: equilateral triangles whose size follows the line width.
#include "draw/core/ArrowGeometry.h"

#include <algorithm>
#include <cmath>

#include "draw/core/PathGeometry.h"

namespace {

/// Square root of 3 to six figures: files drawn with it are reproduced with it.
constexpr double kR = 1.73205;
/// kR - 2 / kR, kept as a value of its own: twice a head's overhang behind its centroid per side.
constexpr double kK = 0.5773489232412461;
/// Below this horizontal extent a segment counts as vertical.
constexpr double kVerticalThreshold = 0.5;

/// Side of the triangle, reduced to the room there is.
double limitedSide(double side, double length, bool sharedSegment, bool endCanMove) {
  const double height = side * kR / 2;
  if (endCanMove) {
    if (sharedSegment) return side * kR > length ? length / kR : side;
    return height > length ? 2 * length / kR : side;
  }
  const double overhang = height - side / kR;
  if (sharedSegment) return 2 * overhang > length ? length / kK : side;
  return overhang > length ? 2 * length / kK : side;
}

/// Positions of a head along the axis of its segment.
struct AxisHead {
  double tip;
  double movedEnd;
  double base;
};

/// `end` is where the line ends, `direction` +1 or -1 along the axis.
AxisHead headOnAxis(double end, double direction, double side, bool endCanMove) {
  const double centroid = side / kR;
  AxisHead head{end, end - direction * centroid, 0};
  if (!endCanMove) {
    head.tip = end + direction * centroid;
    head.movedEnd = end;
  }
  head.base = head.tip - direction * (side * kR / 2);
  return head;
}

std::shared_ptr<NSBezierPath> triangle(NSPoint tip, NSPoint base1, NSPoint base2) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint(tip);
  path->lineToPoint(base1);
  path->lineToPoint(base2);
  path->closePath();
  return path;
}

}  // namespace

std::shared_ptr<NSBezierPath> GetArrowPathAndAdjustedEndPoint(bool sharedSegment, bool endCanMove,
                                                              NSPoint* movedEnd, NSPoint from,
                                                              NSPoint to, float lineWidth) {
  const float fullSide = 4 * lineWidth;
  const bool vertical = std::fabs(from.x - to.x) < kVerticalThreshold;
  NSAffineTransform frame;
  if (!vertical) {
    const auto slope = static_cast<float>((to.y - from.y) / (to.x - from.x));
    const CGFloat angle = -std::atan(slope);
    frame.appendTransform(NSAffineTransform(CGAffineTransformMakeTranslation(-from.x, -from.y)));
    frame.appendTransform(NSAffineTransform(CGAffineTransformMakeRotation(angle)));
  }
  const NSPoint a = vertical ? from : frame.transformPoint(from);
  const NSPoint b = vertical ? to : frame.transformPoint(to);
  const double length = vertical ? std::fabs(from.y - to.y) : DistanceBetweenTwoPoints(from, to);
  const double side = limitedSide(fullSide, length, sharedSegment, endCanMove);
  if (!(2 * static_cast<double>(lineWidth) <= side)) return nullptr;
  const auto half = static_cast<double>(static_cast<float>(side / 2));

  if (vertical) {
    const AxisHead head = headOnAxis(to.y, to.y >= from.y ? 1 : -1, side, endCanMove);
    if (movedEnd != nullptr && endCanMove) *movedEnd = {to.x, head.movedEnd};
    return triangle({to.x, head.tip}, {to.x - half, head.base}, {to.x + half, head.base});
  }
  const AxisHead head = headOnAxis(b.x, b.x > a.x ? 1 : -1, side, endCanMove);
  NSAffineTransform back = frame;
  back.invert();
  if (movedEnd != nullptr && endCanMove) *movedEnd = back.transformPoint({head.movedEnd, b.y});
  auto path = triangle({head.tip, b.y}, {head.base, b.y + half}, {head.base, b.y - half});
  path->transformUsingAffineTransform(back);
  path->setLineWidth(1);
  return path;
}
