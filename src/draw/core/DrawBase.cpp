#include "draw/core/DrawBase.h"

#include <cmath>
#include <cstdio>

#include "draw/core/PathGeometry.h"
#include "draw/core/ReflectionLimits.h"
#include "platform/graphics/color/NSColor.h"

const NSClass DrawBase::kClass{"DrawBase", &NSObject::kClass, NSAllocate<DrawBase>};

namespace {

constexpr CGFloat kNewLineWidth = 2;

}  // namespace

void DrawBase::init() {
  opacity_ = 100;
  bezierPath_ = NSBezierPath::bezierPath();
  bezierPath_->setLineWidth(kNewLineWidth);
  bezierPath_->setLineCapStyle(LineCap::square);
  bezierPath_->setLineJoinStyle(LineJoin::bevel);
  bEnableStroke_ = classDrawStroke();
  if (bEnableStroke_) {
    colorStroke_ = NSColor::blackColor();
    bEnableFill_ = false;
  } else if (classDrawBezierPathFill()) {
    bEnableFill_ = true;
    colorFill_ = NSColor::blackColor();
  }
  // The stroke gradient's angle stays 0: only decoding gives both gradients 90.
  fFillGdtDegree_ = 90;
  bezierPath_->setLineDash({}, 0);
  fRotateDegree_ = 0;
  bVisible_ = true;
  bLocked_ = false;
  bSmooth_ = true;
  fReflection_ = 0;
  fReflectionDis_ = kUnsetReflectionDistance;
}

float DrawBase::normalizedDegree(float degrees) {
  if (!std::isfinite(degrees)) return 0;
  // Far outside, single precision has no angle left to keep; whole turns go at once.
  constexpr float kFar = 360 * 64;
  if (std::fabs(degrees) > kFar) degrees = std::fmod(degrees, 360.0F);
  while (degrees <= -180) degrees += 360;
  while (degrees > 180) degrees -= 360;
  return std::round(degrees * 1000) / 1000;
}

void DrawBase::setLineWidth(CGFloat width) {
  if (bezierPath_ == nullptr) return;
  const std::string dash = lineDashStyle();
  bezierPath_->setLineWidth(width);
  setLineDashStyle(dash);
}

namespace {

/// Units of a dash pattern: the line width, or 1 for lines without one.
CGFloat dashUnit(const NSBezierPath& path) {
  return path.lineWidth() > 0 ? path.lineWidth() : 1;
}

}  // namespace

std::string DrawBase::lineDashStyle() const {
  if (bezierPath_ == nullptr) return {};
  std::string text;
  for (const CGFloat length : bezierPath_->lineDash()) {
    char number[40];
    std::snprintf(number, sizeof number, "%g", length / dashUnit(*bezierPath_));
    if (!text.empty()) text += ':';
    text += number;
  }
  return text;
}

void DrawBase::setLineDashStyle(std::string_view pattern) {
  if (bezierPath_ == nullptr) return;
  double dash[kMaxDashCount];
  int count = 0;
  GetDashArrayFromString(pattern, dash, &count);
  for (int i = 0; i < count; ++i) dash[i] *= dashUnit(*bezierPath_);
  bezierPath_->setLineDash({dash, static_cast<size_t>(count)}, 0);
  bezierPath_->roundToArchivedPrecision();
}

void DrawBase::copyCommonAttributesFrom(const DrawBase& other) {
  bezierPath_ = other.bezierPath_ ? other.bezierPath_->copy() : nullptr;
  opacity_ = other.opacity_;
  bEnableStroke_ = other.bEnableStroke_;
  bStrokeWithGdt_ = other.bStrokeWithGdt_;
  colorStroke_ = other.colorStroke_;
  gradientStroke_ = other.gradientStroke_;
  bStrokeRadialGdt_ = other.bStrokeRadialGdt_;
  fStrokeGdtDegree_ = other.fStrokeGdtDegree_;
  ptStrokeGdtCenter_ = other.ptStrokeGdtCenter_;
  bEnableFill_ = other.bEnableFill_;
  bFillWithGdt_ = other.bFillWithGdt_;
  colorFill_ = other.colorFill_;
  gradientFill_ = other.gradientFill_;
  bFillRadialGdt_ = other.bFillRadialGdt_;
  fFillGdtDegree_ = other.fFillGdtDegree_;
  ptFillGdtCenter_ = other.ptFillGdtCenter_;
  strLayerTitle_ = other.strLayerTitle_;
  fRotateDegree_ = other.fRotateDegree_;
  bVisible_ = other.bVisible_;
  bLocked_ = other.bLocked_;
  bSmooth_ = other.bSmooth_;
  bEnableShadow_ = other.bEnableShadow_;
  shadow_ = other.shadow_;
  bEnableInnerShadow_ = other.bEnableInnerShadow_;
  shadowInner_ = other.shadowInner_;
  bEnableReflection_ = other.bEnableReflection_;
  fReflection_ = other.fReflection_;
  fReflectionDis_ = other.fReflectionDis_;
  _enableStrokeOutline = other._enableStrokeOutline;
  _strokeOutlineWidth = other._strokeOutlineWidth;
  _strokeOutlineColor = other._strokeOutlineColor;
}

NSRect DrawBase::pathBounds() const {
  return bezierPath_ ? bezierPath_->bounds() : NSZeroRect;
}

NSPoint DrawBase::rotateCenter() const {
  const NSRect bounds = pathBounds();
  return {NSMidX(bounds), NSMidY(bounds)};
}

NSAffineTransform DrawBase::transform() const {
  NSAffineTransform t;
  if (bezierPath_ == nullptr || bezierPath_->isEmpty() || fRotateDegree_ == 0) return t;
  const NSPoint center = DrawBase::rotateCenter();
  t.translateXBy(center.x, center.y);
  t.rotateByDegrees(fRotateDegree_);
  t.translateXBy(-center.x, -center.y);
  return t;
}

NSAffineTransform DrawBase::invertTransform() const {
  NSAffineTransform t = transform();
  t.invert();
  return t;
}

void DrawBase::applyRotationToBezierPath() {
  if (bezierPath_ != nullptr) {
    bezierPath_->transformUsingAffineTransform(transform());
    bezierPath_->roundToArchivedPrecision();
  }
  fRotateDegree_ = 0;
}

namespace {

NSPoint relativeCenterPoint(const NSRect& bounds, NSPoint center) {
  return {NSMidX(bounds) + center.x * NSWidth(bounds) * 0.5,
          NSMidY(bounds) + center.y * NSHeight(bounds) * 0.5};
}

}  // namespace

NSPoint DrawBase::fillGradientCenterPointWithScale(CGFloat) const {
  return pointAfterRotate(relativeCenterPoint(pathBounds(), ptFillGdtCenter_));
}

NSPoint DrawBase::strokeGradientCenterPointWithScale(CGFloat) const {
  return pointAfterRotate(relativeCenterPoint(pathBounds(), ptStrokeGdtCenter_));
}
