#include "platform/graphics/context/NSShadow.h"

#include <cmath>

#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/color/NSColor.h"

const NSClass NSShadow::kClass{"NSShadow", &NSObject::kClass, NSAllocate<NSShadow>};

namespace {

constexpr const char* kHoriz = "NSShadowHoriz";
constexpr const char* kVert = "NSShadowVert";
constexpr const char* kBlurRadius = "NSShadowBlurRadius";
constexpr const char* kColor = "NSShadowColor";
constexpr const char* kOffset = "NSShadowOffset";
constexpr CGFloat kDefaultAlpha = 1.0 / 3;

}  // namespace

NSShadow::NSShadow() : color_(NSColor::colorWithCalibratedWhite(0, kDefaultAlpha)) {}

void NSShadow::setShadowOffset(NSSize offset) {
  if (std::isfinite(offset.width) && std::isfinite(offset.height)) offset_ = offset;
}

void NSShadow::setShadowBlurRadius(CGFloat radius) {
  if (std::isfinite(radius) && radius >= 0) blurRadius_ = radius;
}

bool NSShadow::initWithCoder(NSCoder& coder) {
  if (!coder.containsValueForKey(kHoriz) && !coder.containsValueForKey(kVert)) {
    setShadowOffset(coder.decodeSizeForKey(kOffset));
  } else {
    setShadowOffset({coder.decodeDoubleForKey(kHoriz), coder.decodeDoubleForKey(kVert)});
  }
  setShadowBlurRadius(coder.decodeDoubleForKey(kBlurRadius));
  if (coder.containsValueForKey(kColor)) {
    if (auto color = coder.decodeObjectOfClass<NSColor>(kColor)) color_ = std::move(color);
  }
  return true;
}

void NSShadow::encodeWithCoder(NSCoder& coder) const {
  if (offset_.width != 0) coder.encodeDouble(offset_.width, kHoriz);
  if (offset_.height != 0) coder.encodeDouble(offset_.height, kVert);
  if (blurRadius_ != 0) coder.encodeDouble(blurRadius_, kBlurRadius);
  if (color_ != nullptr) coder.encodeObject(color_, kColor);
}
