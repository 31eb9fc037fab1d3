#pragma once

#include "platform/foundation/Geometry.h"

class NSLayoutManager;

/// The area that a layout manager sets text into.
class NSTextContainer {
 public:
  /// What a container without a size given has; no text reaches its sides.
  static constexpr CGFloat kUnlimited = 1.7976931348623157e308;

  NSTextContainer() : NSTextContainer(NSMakeSize(kUnlimited, kUnlimited)) {}
  explicit NSTextContainer(const NSSize& size) : size_(size) {}

  const NSSize& containerSize() const { return size_; }
  void setContainerSize(const NSSize& size);
  /// Space kept free at the start and the end of each line; 5 unless set.
  CGFloat lineFragmentPadding() const { return padding_; }
  void setLineFragmentPadding(CGFloat padding);

  /// The layout manager that sets text into it, or null.
  NSLayoutManager* layoutManager() const { return layoutManager_; }

 private:
  friend class NSLayoutManager;
  void changed();

  NSSize size_;
  CGFloat padding_ = 5;
  NSLayoutManager* layoutManager_ = nullptr;
};
