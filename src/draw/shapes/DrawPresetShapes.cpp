// The preset shapes with an outline of their own: polygons, the star, and the pictograms.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "draw/core/PathGeometry.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/FixedOutlines.h"
#include "platform/foundation/Limits.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass DrawRectPolygon::kClass{"DrawRectPolygon", &DrawRectShape::kClass,
                                      NSAllocate<DrawRectPolygon>};
const NSClass DrawRectStar::kClass{"DrawRectStar", &DrawRectShape::kClass,
                                   NSAllocate<DrawRectStar>};

namespace {

constexpr const char* kPointsCount = "PointsCount";
constexpr const char* kInnerSize = "InnerSize";

constexpr int64_t atLeastTriangle(int64_t count) {
  return count < 4 ? 3 : count;
}

/// The box of a polygon: half-axes in single precision, as the vertices are computed with.
struct PolygonFrame {
  explicit PolygonFrame(const NSRect& box)
      : a(static_cast<float>(NSWidth(box) / 2)),
        b(static_cast<float>(NSHeight(box) / 2)),
        center{NSMidX(box), NSMidY(box)} {}
  NSPoint at(CGFloat dx, CGFloat dy) const { return {center.x + dx, center.y + dy}; }

  float a;
  float b;
  NSPoint center;
};

/// Where an angle in (90, 450) is bent to: the end of the box's long axis in its quadrant.
float longAxisAngle(float degrees, bool tall) {
  if (tall) return degrees < 180 ? 90 : degrees < 360 ? 270 : 450;
  return degrees < 270 ? 180 : 360;
}

float bentAngle(float degrees, const PolygonFrame& frame, int64_t count) {
  const float ratio = std::min(frame.a, frame.b) / std::max(frame.a, frame.b);
  if (ratio > 0.99F || count % 4 == 0 || static_cast<int>(degrees) % 90 == 0) return degrees;
  return degrees + (longAxisAngle(degrees, frame.a <= frame.b) - degrees) * (1 - ratio);
}

/// Where the ray at that angle meets the ellipse in the box.
NSPoint vertexAt(float degrees, const PolygonFrame& frame) {
  if (std::fabs(degrees - 270) < 0.01F) return frame.at(0, -frame.b);
  const float slope = std::tan(degrees * std::numbers::pi_v<float> / 180);
  const CGFloat a = frame.a, b = frame.b, t = slope;
  const CGFloat reach = std::sqrt(1 / (t * t / (b * b) + 1 / (a * a)));
  const CGFloat x = degrees > 90 && degrees < 270 ? -reach : reach;
  return frame.at(x, t * x);
}

void appendVertices(NSBezierPath& path, const PolygonFrame& frame, int64_t count) {
  const float step = 360.0F / static_cast<float>(count);
  float degrees = 90;
  for (int64_t i = 1; i < count; ++i) {
    degrees += step;
    path.lineToPoint(vertexAt(bentAngle(degrees, frame, count), frame));
  }
}

}  // namespace

std::string DrawRectPolygon::name() const {
  switch (dPoints_) {
    case 3:
      return "Isosceles Triangle";
    case 4:
      return "Rhomb";
    case 5:
      return "Pentagon";
    case 6:
      return "Hexagon";
    default:
      return "Polygon";
  }
}

void DrawRectPolygon::setPointsCount(int64_t count) {
  count = atLeastTriangle(count);
  if (count == dPoints_) return;
  dPoints_ = count;
  rebuildOutline();
}

void DrawRectPolygon::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  const PolygonFrame frame(bounds);
  path.moveToPoint(frame.at(0, frame.b));
  if (dPoints_ == 3) {
    // Equilateral in a square box, so the base lies above the box's lower edge.
    const auto base = static_cast<float>(frame.center.y - 0.7320508 * static_cast<double>(frame.b));
    path.lineToPoint({frame.center.x - static_cast<CGFloat>(frame.a), static_cast<CGFloat>(base)});
    path.lineToPoint({frame.center.x + static_cast<CGFloat>(frame.a), static_cast<CGFloat>(base)});
  } else if (dPoints_ == 4) {
    path.lineToPoint(frame.at(-frame.a, 0));
    path.lineToPoint(frame.at(0, -frame.b));
    path.lineToPoint(frame.at(frame.a, 0));
  } else {
    appendVertices(path, frame, std::min(dPoints_, limits::kMaxPolygonPoints));
  }
  path.closePath();
}

bool DrawRectPolygon::initWithCoder(NSCoder& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  if (coder.containsValueForKey(kPointsCount)) {
    dPoints_ = atLeastTriangle(coder.decodeIntegerForKey(kPointsCount));
  }
  return true;
}

void DrawRectPolygon::encodeWithCoder(NSCoder& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeInteger(dPoints_, kPointsCount);
}

void DrawRectStar::setInnerSize(NSSize fractions) {
  sizeInner_ = fractions;
  rebuildOutline();
}

NSSize DrawRectStar::effectiveInnerSizeWithControlSize(NSSize box) const {
  const auto effective = [](CGFloat fraction, CGFloat side) {
    const CGFloat inner = fraction * side;
    return inner >= 1 && inner <= side ? inner : 0.4 * side;
  };
  return {effective(sizeInner_.width, box.width), effective(sizeInner_.height, box.height)};
}

void DrawRectStar::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  constexpr double kStep = 36;
  const NSSize inner = effectiveInnerSizeWithControlSize(bounds.size);
  const NSRect innerBox = NSInsetRect(bounds, (NSWidth(bounds) - inner.width) / 2,
                                      (NSHeight(bounds) - inner.height) / 2);
  double degrees = 90;
  path.moveToPoint(GetPointInEllipse(bounds, degrees));
  path.lineToPoint(GetPointInEllipse(innerBox, degrees + kStep));
  for (int point = 1; point < 5; ++point) {
    degrees += 2 * kStep;
    path.lineToPoint(GetPointInEllipse(bounds, degrees));
    path.lineToPoint(GetPointInEllipse(innerBox, degrees + kStep));
  }
  path.closePath();
}

bool DrawRectStar::initWithCoder(NSCoder& coder) {
  if (!DrawRectShape::initWithCoder(coder)) return false;
  sizeInner_ = coder.decodeSizeForKey(kInnerSize);
  return true;
}

void DrawRectStar::encodeWithCoder(NSCoder& coder) const {
  DrawRectShape::encodeWithCoder(coder);
  coder.encodeSize(sizeInner_, kInnerSize);
}

namespace {

template <size_t... kIndex>
std::array<NSClass, kFixedOutlineCount> fixedShapeClasses(std::index_sequence<kIndex...>) {
  return {NSClass{
      fixedOutlines()[kIndex].className, &DrawRectShape::kClass,
      []() -> std::shared_ptr<NSObject> { return std::make_shared<DrawFixedShape>(kIndex); }}...};
}

}  // namespace

const NSClass& DrawFixedShape::classAt(size_t index) {
  static const auto kClasses = fixedShapeClasses(std::make_index_sequence<kFixedOutlineCount>());
  return kClasses[index];
}

const FixedOutline& DrawFixedShape::outline() const {
  return fixedOutlines()[index_];
}

std::string DrawFixedShape::name() const {
  return std::string(outline().name);
}

CGFloat DrawFixedShape::width2HeightRatioForShift() const {
  return outline().width2HeightRatio;
}

void DrawFixedShape::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  // Single precision, as the outlines of existing documents were computed with.
  const CGFloat w = static_cast<float>(NSWidth(bounds));
  const CGFloat h = static_cast<float>(NSHeight(bounds));
  const auto place = [&](NSPoint p) {
    return NSPoint{NSMinX(bounds) + p.x * w, NSMinY(bounds) + p.y * h};
  };
  for (const auto& [verb, p] : outline().elements) {
    if (verb == PathVerb::move) {
      path.moveToPoint(place(p[0]));
    } else if (verb == PathVerb::line) {
      path.lineToPoint(place(p[0]));
    } else if (verb == PathVerb::cubic) {
      path.curveToPoint(place(p[2]), place(p[0]), place(p[1]));
    } else {
      path.closePath();
    }
  }
}
