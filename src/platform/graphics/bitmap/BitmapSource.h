#pragma once

#include <memory>
#include <utility>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"

/// What a bitmap is made from: a file, a page, another picture. Immutable, so that drawings may be
/// recorded with it.
class BitmapSource {
 public:
  virtual ~BitmapSource() = default;
  /// The bitmap, with so many pixels a canvas unit where that is for it to choose. Not to be
  /// changed; null when it cannot be made. Throws std::bad_alloc.
  virtual std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat scale) const = 0;
};

/// A bitmap that is made from nothing else.
class HeldPicture final : public BitmapSource {
 public:
  explicit HeldPicture(std::shared_ptr<NSBitmapImageRep> bitmap) : bitmap_(std::move(bitmap)) {}
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat) const override { return bitmap_; }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
};
