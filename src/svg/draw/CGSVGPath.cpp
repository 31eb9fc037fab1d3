#include "svg/draw/CGSVGPath.h"

#include "svg/draw/CGSVGTransform.h"

namespace SVGNative {

namespace {

// Elements and points of the shapes.
constexpr size_t kRectElements = 5;
constexpr size_t kRectPoints = 4;
constexpr size_t kRoundedRectElements = 9;
constexpr size_t kRoundedRectPoints = 16;
constexpr size_t kEllipseElements = 6;
constexpr size_t kEllipsePoints = 13;

}  // namespace

std::optional<NSRect> CGSVGPath::asRect() const {
  return path_.data().verbs.size() == kRectElements ? firstRect_ : std::nullopt;
}

void CGSVGPath::Reserve(size_t points) {
  // Elements take a byte each: room for as many as there can be spares growing later.
  constexpr size_t kEnds = 2;
  path_.reserve(points + kEnds, points);
}

void CGSVGPath::Rect(float x, float y, float width, float height) {
  const NSRect rect = NSMakeRect(x, y, width, height);
  if (path_.isEmpty()) {
    firstRect_ = rect;
    path_.reserve(kRectElements, kRectPoints);
  }
  path_.addRect(rect);
}

void CGSVGPath::RoundedRect(float x, float y, float width, float height, float rx, float ry) {
  if (path_.isEmpty()) path_.reserve(kRoundedRectElements, kRoundedRectPoints);
  path_.addRoundedRect(NSMakeRect(x, y, width, height), rx, ry);
}

void CGSVGPath::Ellipse(float cx, float cy, float rx, float ry) {
  if (path_.isEmpty()) path_.reserve(kEllipseElements, kEllipsePoints);
  const CGFloat width = 2.0 * rx;
  const CGFloat height = 2.0 * ry;
  path_.addEllipseInRect(NSMakeRect(CGFloat{cx} - rx, CGFloat{cy} - ry, width, height));
}

void CGSVGPath::MoveTo(float x, float y) {
  path_.moveToPoint({x, y});
}

void CGSVGPath::LineTo(float x, float y) {
  path_.addLineToPoint({x, y});
}

void CGSVGPath::CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) {
  path_.addCurveToPoint({x1, y1}, {x2, y2}, {x3, y3});
}

void CGSVGPath::CurveToV(float x1, float y1, float x2, float y2) {
  path_.addQuadCurveToPoint({x1, y1}, {x2, y2});
}

void CGSVGPath::ClosePath() {
  path_.closeSubpath();
}

void CGSVGPath::AddPath(const Path& other, const Transform* transform) {
  path_.addPath(static_cast<const CGSVGPath&>(other).path(), matrixOf(transform));
}

SVGNative::Rect CGSVGPath::Bounds() const {
  if (path_.isEmpty()) return {};
  const CGRect box = path_.pathBoundingBox();
  return {{static_cast<float>(NSMinX(box)), static_cast<float>(NSMaxX(box))},
          {static_cast<float>(NSMinY(box)), static_cast<float>(NSMaxY(box))}};
}

}  // namespace SVGNative
