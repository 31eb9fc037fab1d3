#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSColor;

/// A drop shadow: offset (y up, not subject to the drawing transform), blur radius, colour.
/// A new one has no offset, no blur, and black at one third.
class NSShadow : public NSObject {
 public:
  static const NSClass kClass;
  NSShadow();
  const NSClass& classInfo() const override { return kClass; }

  NSSize shadowOffset() const { return offset_; }
  /// An offset that is not finite is refused: the old one stays.
  void setShadowOffset(NSSize offset);
  CGFloat shadowBlurRadius() const { return blurRadius_; }
  /// A radius that is negative or not finite is refused: the old one stays.
  void setShadowBlurRadius(CGFloat radius);
  /// Null switches the shadow off.
  const std::shared_ptr<NSColor>& shadowColor() const { return color_; }
  void setShadowColor(std::shared_ptr<NSColor> color) { color_ = std::move(color); }

  /// Puts the shadow in force in the current graphics context.
  void set() const;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  NSSize offset_;
  CGFloat blurRadius_ = 0;
  std::shared_ptr<NSColor> color_;
};
