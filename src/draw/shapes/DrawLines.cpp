#include "draw/shapes/DrawLines.h"

#include <utility>

#include "draw/core/ZTBezierPathExtension.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSNumber.h"

const NSClass DrawLine::kClass{"DrawLine", &DrawBase::kClass, NSAllocate<DrawLine>};
const NSClass DrawCurve::kClass{"DrawCurve", &DrawBase::kClass, NSAllocate<DrawCurve>};
const NSClass DrawBrokenLine::kClass{"DrawBrokenLine", &DrawBase::kClass,
                                     NSAllocate<DrawBrokenLine>};
const NSClass DrawFreePolygon::kClass{"DrawFreePolygon", &DrawBase::kClass,
                                      NSAllocate<DrawFreePolygon>};
const NSClass DrawBezierPath::kClass{"DrawBezierPath", &DrawBase::kClass,
                                     NSAllocate<DrawBezierPath>};

namespace {

constexpr const char* kArrowStyle = "ArrowStyle";
constexpr const char* kArrowStyleAttribute = "DAKeyArrowStyle";

/// The path without its points; a new one for draws whose archive had none.
NSBezierPath& emptied(std::shared_ptr<NSBezierPath>& path) {
  if (path == nullptr) path = NSBezierPath::bezierPath();
  path->removeAllPoints();
  return *path;
}

/// The points of a path that is a move and one element of the wanted kind.
bool readSingleElement(const NSBezierPath* path, NSBezierPathElement kind, NSPoint& start,
                       NSPoint* points) {
  return path != nullptr && path->elementCount() == 2 &&
         path->elementAtIndex(0, &start) == NSMoveToBezierPathElement &&
         path->elementAtIndex(1, points) == kind;
}

}  // namespace

void DrawArrowed::init() {
  DrawBase::init();
  bezierPath_->setLineCapStyle(LineCap::butt);
}

std::shared_ptr<NSDictionary> DrawArrowed::drawAttributes() const {
  auto attributes = std::make_shared<NSMutableDictionary>(*DrawBase::drawAttributes());
  attributes->setObject(NSNumber::numberWithInteger(arrowStyle_), kArrowStyleAttribute);
  return attributes;
}

bool DrawArrowed::setDrawAttributes(const NSDictionary& attributes) {
  if (!canSetDrawAttributes(&attributes)) return false;
  const bool changed = DrawBase::setDrawAttributes(attributes);
  const auto style = attributes.objectOfClass<NSNumber>(kArrowStyleAttribute);
  if (style == nullptr || style->integerValue() == arrowStyle_) return changed;
  arrowStyle_ = style->integerValue();
  return true;
}

bool DrawArrowed::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  arrowStyle_ = coder.decodeIntegerForKey(kArrowStyle);
  return true;
}

void DrawArrowed::encodeWithCoder(NSCoder& coder) const {
  DrawBase::encodeWithCoder(coder);
  coder.encodeInteger(arrowStyle_, kArrowStyle);
}

void DrawLine::setStartPoint(NSPoint start, NSPoint endPoint) {
  ptStart_ = start;
  ptEnd_ = endPoint;
  NSBezierPath& path = emptied(bezierPath_);
  path.moveToPoint(start);
  path.lineToPoint(endPoint);
}

void DrawLine::updatePoints() {
  NSPoint p[3];
  NSPoint start;
  const bool isLine = readSingleElement(bezierPath_.get(), NSLineToBezierPathElement, start, p);
  ptStart_ = isLine ? start : NSZeroPoint;
  ptEnd_ = isLine ? p[0] : NSZeroPoint;
}

void DrawLine::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  DrawArrowed::setBezierPathWithData(data);
  updatePoints();
}

void DrawLine::mapGeometry(const AxisMap& map) {
  DrawArrowed::mapGeometry(map);
  updatePoints();
}

bool DrawLine::initWithCoder(NSCoder& coder) {
  if (!DrawArrowed::initWithCoder(coder)) return false;
  updatePoints();
  return true;
}

void DrawCurve::setStartPoint(NSPoint start, NSPoint ctlPoint1, NSPoint ctlPoint2,
                              NSPoint endPoint) {
  ptStart_ = start;
  ptCtl1_ = ctlPoint1;
  ptCtl2_ = ctlPoint2;
  ptEnd_ = endPoint;
  NSBezierPath& path = emptied(bezierPath_);
  path.moveToPoint(start);
  path.curveToPoint(endPoint, ctlPoint1, ctlPoint2);
}

void DrawCurve::updatePoints() {
  NSPoint p[3];
  NSPoint start;
  if (!readSingleElement(bezierPath_.get(), NSCurveToBezierPathElement, start, p)) {
    start = p[0] = p[1] = p[2] = NSZeroPoint;
  }
  ptStart_ = start;
  ptCtl1_ = p[0];
  ptCtl2_ = p[1];
  ptEnd_ = p[2];
}

void DrawCurve::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  DrawArrowed::setBezierPathWithData(data);
  updatePoints();
}

void DrawCurve::mapGeometry(const AxisMap& map) {
  DrawArrowed::mapGeometry(map);
  updatePoints();
}

bool DrawCurve::initWithCoder(NSCoder& coder) {
  if (!DrawArrowed::initWithCoder(coder)) return false;
  updatePoints();
  return true;
}

std::shared_ptr<DrawFreePolygon> DrawBrokenLine::polygonForClosedPath() const {
  auto polygon = std::make_shared<DrawFreePolygon>();
  polygon->init();
  polygon->setEnableFill(false);
  polygon->setUseGradualFill(false);
  polygon->setEnableStroke(bEnableStroke_);
  polygon->setUseGradualStroke(bStrokeWithGdt_);
  polygon->setStrokeColor(colorStroke_);
  polygon->setStrokeGradient(gradientStroke_);
  polygon->setUseRadialStrokeGradient(bStrokeRadialGdt_);
  polygon->setStrokeGradientCenter(ptStrokeGdtCenter_);
  polygon->setStrokeGradientDegree(fStrokeGdtDegree_);
  polygon->setEnableShadow(bEnableShadow_);
  polygon->setShadow(shadow_);
  polygon->setEnableInnerShadow(false);
  polygon->setInnerShadow(nullptr);
  polygon->setSmooth(bSmooth_);
  polygon->setLocked(bLocked_);
  if (strLayerTitle_ && !strLayerTitle_->empty()) polygon->setLayerTitle(strLayerTitle_);
  const NSBezierPath& own = *polygon->bezierPath();
  const LineJoin join = own.lineJoinStyle();
  auto path = bezierPath_ ? bezierPath_->copy() : NSBezierPath::bezierPath();
  path->closePath();
  path->setLineJoinStyle(join);
  polygon->setBezierPath(std::move(path));
  return polygon;
}

std::string DrawFreePolygon::name() const {
  // A move, the sides and a close; the move that a close brings along does not count as a side.
  constexpr int64_t kTriangleElements = 5;
  const int64_t n = bezierPath_ ? bezierPath_->elementCount() : 0;
  const bool trailingMove =
      n > 0 && bezierPath_->elementAtIndex(n - 1) == NSMoveToBezierPathElement;
  const bool triangle = n == kTriangleElements || (trailingMove && n - 1 == kTriangleElements);
  return _semgents == 3 || triangle ? "Triangle" : "Free Polygon";
}

void DrawFreePolygon::init() {
  DrawBase::init();
  bezierPath_->setLineJoinStyle(LineJoin::round);
}

bool DrawFreePolygon::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  if (bezierPath_ != nullptr) bezierPath_->setLineJoinStyle(LineJoin::round);
  return true;
}

bool DrawFreePolygon::canAddCurvedSegment() const {
  return _semgents != 3 && DrawBase::canAddCurvedSegment();
}

bool DrawBezierPath::classDrawBezierPathFill() const {
  return bezierPath_ != nullptr && ::isPathClosed(*bezierPath_);
}

bool DrawBezierPath::hasStrokeOutline() const {
  return !classDrawBezierPathFill() && DrawBase::hasStrokeOutline();
}

bool DrawBezierPath::resetSelectedElement() {
  const int64_t old = std::exchange(_focusElementIndex, -1);
  return old >= 0 && bezierPath_ != nullptr && old < bezierPath_->elementCount();
}

void DrawBezierPath::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  DrawArrowed::setBezierPathWithData(data);
  resetSelectedElement();
}

void DrawBezierPath::drawInImage(NSBitmapImageRep* image) {
  if (!isBeingDragged() || bezierPath_ == nullptr || bezierPath_->isEmpty()) {
    return DrawArrowed::drawInImage(image);
  }
  // Drawn as another draw, so that this one stays whole whatever happens on the way.
  DrawBezierPath settled;
  settled.copyCommonAttributesFrom(*this);
  settled.arrowStyle_ = arrowStyle_;
  settled.bezierPath_ = removeLastElements(*bezierPath_, 1);
  settled.drawInImage(image);
}

std::string DrawBezierPath::name() const {
  return classDrawBezierPathFill() ? "Shape" : "Path";
}

std::shared_ptr<NSDictionary> DrawBezierPath::drawAttributes() const {
  // NOLINTNEXTLINE(bugprone-parent-virtual-call): without the arrow style, which lines share only.
  return DrawBase::drawAttributes();
}

bool DrawBezierPath::setDrawAttributes(const NSDictionary& attributes) {
  return DrawBase::setDrawAttributes(attributes);  // NOLINT(bugprone-parent-virtual-call)
}
