// The path that curved text runs along, from the outline of its guide.
#include <algorithm>
#include <array>

#include "draw/core/CurveGeometry.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/text/DrawBezierText.h"

namespace {

using PathPointer = std::shared_ptr<NSBezierPath>;

bool isOpen(const NSBezierPath& path) {
  const int64_t n = path.elementCount();
  return n >= 2 && path.elementAtIndex(n - 1) != NSClosePathBezierPathElement &&
         path.elementAtIndex(n - 2) != NSClosePathBezierPathElement;
}

/// Whether an open path ends left of its start: text along it would stand on its head.
bool runsRightToLeft(const NSBezierPath& path) {
  NSPoint points[3];
  path.elementAtIndex(0, points);
  return isOpen(path) && points[0].x > path.currentPoint()->x;
}

PathPointer leftToRight(const PathPointer& path) {
  return !path->isEmpty() && runsRightToLeft(*path) ? path->bezierPathByReversingPath() : path;
}

void mirror(NSBezierPath& path, NSPoint center, CGFloat x, CGFloat y) {
  NSAffineTransform t;
  t.translateXBy(center.x, center.y);
  t.scaleXBy(x, y);
  t.translateXBy(-center.x, -center.y);
  path.transformUsingAffineTransform(t);
}

/// A closed box with elliptic corners, drawn clockwise so that text stands on its outside.
class ClockwiseBox {
 public:
  ClockwiseBox(NSSize size, CGFloat xRadius, CGFloat yRadius)
      : size_(size),
        rx_(std::clamp(xRadius, 0.0, size.width / 2)),
        ry_(std::clamp(yRadius, 0.0, size.height / 2)) {}

  enum class Start : uint8_t {
    topEdge,       ///< its left end
    topEdgeEnd,    ///< its right end
    leftEdge,      ///< its lower end, the leftmost point of an ellipse
    rightEdge,     ///< its upper end, the rightmost point of an ellipse
    bottomMiddle,  ///< the middle of the path lies at the middle of the top
  };

  PathPointer from(Start start) const {
    auto path = NSBezierPath::bezierPath();
    constexpr size_t kPieces = 9;
    static constexpr std::array<size_t, 5> kFirst{0, 1, 7, 2, 5};
    const size_t first = kFirst[static_cast<size_t>(start)];
    path->moveToPoint(startOf(first));
    for (size_t i = 0; i < kPieces; ++i) append(*path, (first + i) % kPieces);
    path->closePath();
    return path;
  }

 private:
  // Pieces: top edge, corner, right edge, corner, right half of the bottom edge, left half,
  // corner, left edge, corner.
  NSPoint startOf(size_t piece) const {
    const CGFloat w = size_.width, h = size_.height;
    switch (piece) {
      case 0:
        return {rx_, h};
      case 1:
        return {w - rx_, h};
      case 2:
        return {w, h - ry_};
      case 3:
        return {w, ry_};
      case 4:
        return {w - rx_, 0};
      case 5:
        return {w / 2, 0};
      case 6:
        return {rx_, 0};
      case 7:
        return {0, ry_};
      default:
        return {0, h - ry_};
    }
  }

  void append(NSBezierPath& path, size_t piece) const {
    const NSPoint a = startOf(piece), b = startOf((piece + 1) % 9);
    if (a == b) return;
    const CGFloat w = size_.width, h = size_.height;
    switch (piece) {
      case 1:
        return curve(path, a, {w, h}, b);
      case 3:
        return curve(path, a, {w, 0}, b);
      case 6:
        return curve(path, a, {0, 0}, b);
      case 8:
        return curve(path, a, {0, h}, b);
      default:
        return path.lineToPoint(b);
    }
  }

  /// A quarter of an ellipse; the control points lie near the corner.
  static void curve(NSBezierPath& path, NSPoint a, NSPoint corner, NSPoint b) {
    constexpr CGFloat kFromCorner = 0.44772;
    path.curveToPoint(b, InterpolateLineSegment(corner, a, kFromCorner),
                      InterpolateLineSegment(corner, b, kFromCorner));
  }

  NSSize size_;
  CGFloat rx_;
  CGFloat ry_;
};

/// Centred text has its middle at the middle of the top. Text of an ellipse otherwise starts at its
/// left, or ends at its right; that of a box starts and ends with the top edge.
ClockwiseBox::Start startFor(NSTextAlignment alignment, bool ellipse) {
  using Start = ClockwiseBox::Start;
  if (alignment == NSTextAlignment::center) return Start::bottomMiddle;
  if (alignment == NSTextAlignment::right) return ellipse ? Start::rightEdge : Start::topEdgeEnd;
  return ellipse ? Start::leftEdge : Start::topEdge;
}

}  // namespace

std::shared_ptr<NSBezierPath> DrawBezierText::bezierPathForDrawTexts() const {
  if (bezierDraw_ == nullptr || bezierDraw_->bezierPath() == nullptr ||
      bezierDraw_->bezierPath()->isEmpty()) {
    return NSBezierPath::bezierPath();
  }
  auto path = _version < 1 ? pathOfVersion0() : bezierPathForDrawTextsV2();
  path->transformUsingAffineTransform(bezierDraw_->transform());
  return path;
}

std::shared_ptr<NSBezierPath> DrawBezierText::pathOfVersion0() const {
  const DrawBase& guide = *bezierDraw_;
  auto path = guide.bezierPath()->copy();
  if (guide.isKindOfClass(DrawRoundRectangle::kClass)) {
    mirror(*path, guide.rotateCenter(), 1, -1);
  } else if (guide.isKindOfClass(DrawEllipse::kClass)) {
    mirror(*path, guide.rotateCenter(), -1, 1);
  } else if (guide.isKindOfClass(DrawRectPolygon::kClass)) {
    return path->bezierPathByReversingPath();
  } else {
    return leftToRight(path);
  }
  return path;
}

std::shared_ptr<NSBezierPath> DrawBezierText::bezierPathForDrawTextsV2() const {
  const DrawBase& guide = *bezierDraw_;
  const auto* round = dynamic_cast<const DrawRoundRectangle*>(&guide);
  const bool ellipse = guide.isKindOfClass(DrawEllipse::kClass);
  if (round == nullptr && !ellipse && !guide.isMemberOfClass(DrawRectangle::kClass)) {
    const auto path = guide.bezierPath()->copy();
    return guide.isKindOfClass(DrawRectPolygon::kClass) ? path->bezierPathByReversingPath()
                                                        : leftToRight(path);
  }
  const NSRect bounds = guide.pathBounds();
  CGFloat rx = 0, ry = 0;
  if (round != nullptr) {
    rx = static_cast<CGFloat>(round->xRadius());
    ry = static_cast<CGFloat>(round->yRadius());
  } else if (ellipse) {
    rx = NSWidth(bounds) / 2;
    ry = NSHeight(bounds) / 2;
  }
  auto path = ClockwiseBox(bounds.size, rx, ry).from(startFor(textAlignment(), ellipse));
  NSAffineTransform move;
  move.translateXBy(NSMinX(bounds), NSMinY(bounds));
  path->transformUsingAffineTransform(move);
  return path;
}
