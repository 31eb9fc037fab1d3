#include "draw/shapes/DrawRectShape.h"

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSValue.h"

const NSClass DrawRectShape::kClass{"DrawRectShape", &DrawRectangle::kClass,
                                    NSAllocate<DrawRectShape>};

namespace {
constexpr const char* kControlBounds = "ControlBounds";
}

void DrawRectShape::init() {
  DrawRectangle::init();
  rectControlBounds_ = NSZeroRect;
  bezierPath_->setLineJoinStyle(LineJoin::round);
}

void DrawRectShape::setBezierPathWithBounds(NSRect bounds) {
  DrawRectangle::setBezierPathWithBounds(bounds);
  rectControlBounds_ = bounds;
}

std::shared_ptr<NSObject> DrawRectShape::bezierPathData() const {
  return NSValue::valueWithRect(rectControlBounds_);
}

void DrawRectShape::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  if (data == nullptr) return setBezierPathWithBounds(NSZeroRect);
  const auto* value = dynamic_cast<const NSValue*>(data.get());
  if (value != nullptr) setBezierPathWithBounds(value->rectValue());
}

void DrawRectShape::mapGeometry(const AxisMap& map) {
  DrawRectangle::mapGeometry(map);
  rectControlBounds_ = map.rect(rectControlBounds_);
}

bool DrawRectShape::initWithCoder(NSCoder& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  if (bezierPath_ != nullptr) bezierPath_->setLineJoinStyle(LineJoin::round);
  rectControlBounds_ = coder.decodeRectForKey(kControlBounds);
  return true;
}

void DrawRectShape::encodeWithCoder(NSCoder& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeRect(rectControlBounds_, kControlBounds);
}
