#include "draw/shapes/DrawRectShape.h"

#include "platform/foundation/NSCoder.h"

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
