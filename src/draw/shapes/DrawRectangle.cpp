#include "draw/shapes/DrawRectangle.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"

const NSClass DrawRectangle::kClass{"DrawRectangle", &DrawBase::kClass, NSAllocate<DrawRectangle>};
const NSClass DrawRoundRectangle::kClass{"DrawRoundRectangle", &DrawRectangle::kClass,
                                         NSAllocate<DrawRoundRectangle>};
const NSClass DrawEllipse::kClass{"DrawEllipse", &DrawRectangle::kClass, NSAllocate<DrawEllipse>};
const NSClass DrawGradient::kClass{"DrawGradient", &DrawRectangle::kClass,
                                   NSAllocate<DrawGradient>};

namespace {

constexpr const char* kXRadius = "XRadius";
constexpr const char* kYRadius = "YRadius";

NSRect atLeastOneByOne(NSRect r) {
  r.size = {std::max(r.size.width, 1.0), std::max(r.size.height, 1.0)};
  return r;
}

std::shared_ptr<NSGradient> blackToGray() {
  return NSGradient::initWithStartingColor(NSColor::blackColor(), NSColor::grayColor());
}

}  // namespace

void DrawRectangle::init() {
  DrawBase::init();
  bezierPath_->setLineJoinStyle(LineJoin::miter);
}

void DrawRectangle::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  path.appendBezierPathWithRect(bounds);
}

std::shared_ptr<NSBezierPath> DrawRectangle::bezierPathWithBounds(NSRect bounds) const {
  auto path = bezierPath_ ? bezierPath_->copy() : NSBezierPath::bezierPath();
  path->removeAllPoints();
  appendOutline(*path, atLeastOneByOne(bounds));
  return path;
}

void DrawRectangle::setBezierPathWithBounds(NSRect bounds) {
  const auto outline = bezierPathWithBounds(bounds);
  if (bezierPath_ == nullptr) bezierPath_ = NSBezierPath::bezierPath();
  bezierPath_->removeAllPoints();
  bezierPath_->appendBezierPath(*outline);
}

NSRect DrawRectangle::controlBounds() const {
  if (bezierPath_ == nullptr || bezierPath_->isEmpty()) return NSZeroRect;
  const auto outline = NSBezierPath::bezierPathWithRect(controlBoundsBeforeRotation());
  outline->transformUsingAffineTransform(transform());
  return outline->bounds();
}

NSPoint DrawRectangle::rotateCenter() const {
  const NSRect bounds = controlBounds();
  return {NSMidX(bounds), NSMidY(bounds)};
}

void DrawRoundRectangle::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  path.appendBezierPathWithRoundedRect(bounds, fXRadius_, fYRadius_);
}

void DrawRoundRectangle::setXRadius(float xRadius, float yRadius) {
  if (!(xRadius >= 0 && yRadius >= 0)) return;
  fXRadius_ = xRadius;
  fYRadius_ = yRadius;
  if (bezierPath_ == nullptr || bezierPath_->isEmpty()) return;
  const NSRect bounds = controlBoundsBeforeRotation();
  bezierPath_->removeAllPoints();
  bezierPath_->appendBezierPathWithRoundedRect(bounds, xRadius, yRadius);
}

void DrawRoundRectangle::mapGeometry(const AxisMap& map) {
  DrawRectangle::mapGeometry(map);
  fXRadius_ *= static_cast<float>(std::fabs(map.xScale));
  fYRadius_ *= static_cast<float>(std::fabs(map.yScale));
}

bool DrawRoundRectangle::initWithCoder(NSCoder& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  fXRadius_ = std::round(coder.decodeFloatForKey(kXRadius));
  fYRadius_ = std::round(coder.decodeFloatForKey(kYRadius));
  return true;
}

void DrawRoundRectangle::encodeWithCoder(NSCoder& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeFloat(fXRadius_, kXRadius);
  coder.encodeFloat(fYRadius_, kYRadius);
}

void DrawEllipse::init() {
  DrawRectangle::init();
  bezierPath_->setLineCapStyle(LineCap::round);
}

void DrawEllipse::appendOutline(NSBezierPath& path, const NSRect& bounds) const {
  path.appendBezierPathWithOvalInRect(bounds);
}

bool DrawEllipse::initWithCoder(NSCoder& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  if (bezierPath_ != nullptr) bezierPath_->setLineCapStyle(LineCap::round);
  return true;
}

void DrawGradient::init() {
  DrawRectangle::init();
  bEnableStroke_ = false;
  bFillWithGdt_ = true;
  fFillGdtDegree_ = 0;
  gradientFill_ = blackToGray();
}

void DrawGradient::setFillGradient(std::shared_ptr<NSGradient> gradient) {
  if (gradient != nullptr) DrawRectangle::setFillGradient(std::move(gradient));
}

bool DrawGradient::initWithCoder(NSCoder& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  bFillWithGdt_ = true;
  if (gradientFill_ == nullptr) gradientFill_ = blackToGray();
  return true;
}
