#pragma once

#include <cstdint>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

/// Numbers are those of archives, on every platform.
enum class NSTextAlignment : int32_t {
  left = 0,
  right = 1,
  center = 2,
  justified = 3,
  natural = 4
};

enum class NSTextTabType : int32_t { left = 0, right = 1, center = 2, decimal = 3 };

/// A position that a tab character advances to, and how the text after it is set against it.
class NSTextTab : public NSObject {
 public:
  static const NSClass kClass;

  NSTextTab() = default;
  NSTextTab(NSTextTabType type, CGFloat location);

  NSTextTabType tabStopType() const { return type_; }
  /// Points from the edge where lines start; never NaN, and within what layout can reckon with.
  CGFloat location() const { return location_; }

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  NSTextTabType type_ = NSTextTabType::left;
  CGFloat location_ = 0;
};
