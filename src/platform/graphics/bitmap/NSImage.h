#pragma once

#include <memory>
#include <utility>

#include "platform/foundation/NSObject.h"

class NSBitmapImageRep;

/// A picture in archives, usually that of a pattern colour: its representations, of which the one
/// with the most pixels is kept.
class NSImage : public NSObject {
 public:
  static const NSClass kClass;

  NSImage() = default;
  explicit NSImage(std::shared_ptr<NSBitmapImageRep> representation)
      : representation_(std::move(representation)) {}

  /// Null for a picture that is only named, or whose data is lost.
  const std::shared_ptr<NSBitmapImageRep>& representation() const { return representation_; }

  const NSClass& classInfo() const override { return kClass; }
  /// Never nil: what cannot be understood is a picture without representation.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::shared_ptr<NSBitmapImageRep> representation_;
};
