#pragma once

#include <cstdint>
#include <memory>

#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/pixels/PixelBox.h"

/// A bitmap that stands for a window of device space, and what of it has been painted. A null
/// bitmap is an empty surface.
class PixelSurface {
 public:
  /// The window's top left corner is (x0, y0).
  PixelSurface(std::shared_ptr<NSBitmapImageRep> bitmap, int32_t x0, int32_t y0);

  const PixelBox& box() const { return box_; }
  /// Smallest box of the pixels that were announced for painting through this object.
  const PixelBox& painted() const { return painted_; }
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }
  /// Rows that may hold anything but transparent pixels.
  PixelBox used() const;

  /// The pixel (x, y), announcing that [x, end) of that row are about to be written. They must lie
  /// inside the box.
  uint32_t* paint(int32_t x, int32_t y, int32_t end) { return paint({x, y, end, y + 1}); }
  /// The same for a box of pixels (not empty): its top left pixel. Rows are box().width() apart.
  uint32_t* paint(const PixelBox& pixels);
  const uint32_t* pixels(int32_t x, int32_t y) const;

  /// Makes everything transparent.
  void clear();

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  PixelBox box_;
  PixelBox painted_;
};
