#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/foundation/NSObject.h"

class EncodedBitmap;
class NSBitmapImageRep;

/// A picture in archives, usually that of a pattern colour: its representations, of which the one
/// with the most pixels counts. They stay encoded until one is asked for.
class NSImage : public NSObject {
 public:
  static const NSClass kClass;

  NSImage() = default;
  explicit NSImage(std::shared_ptr<NSBitmapImageRep> representation)
      : representation_(std::move(representation)) {}

  /// Null for a picture that is only named, or whose data is lost.
  std::shared_ptr<NSBitmapImageRep> representation() const;

  const NSClass& classInfo() const override { return kClass; }
  /// Never nil: what cannot be understood is a picture without representation.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::shared_ptr<NSBitmapImageRep> representation_;
  std::vector<std::shared_ptr<const EncodedBitmap>> encoded_;
};
