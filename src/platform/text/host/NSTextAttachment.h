#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"

/// A picture that stands in a text like a letter. What archives hold of other attachments is not
/// read.
class NSTextAttachment : public NSObject {
 public:
  static const NSClass kClass;

  NSTextAttachment() = default;
  /// `bounds` is where the picture goes from the baseline, y up, points; the picture's own size
  /// when it is empty.
  NSTextAttachment(std::shared_ptr<const NSData> contents, const NSRect& bounds)
      : contents_(std::move(contents)), bounds_(bounds) {}

  /// Null when the contents are no picture.
  std::shared_ptr<const EncodedBitmap> picture() const;
  const NSRect& bounds() const { return bounds_; }

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::shared_ptr<const NSData> contents_;
  NSRect bounds_;
};
