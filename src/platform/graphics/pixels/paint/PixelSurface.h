#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/PixelBuffer.h"

/// Pixels that stand for a window of device space, and what of it has been painted. A null buffer
/// is an empty surface.
class PixelSurface {
 public:
  /// The window's top left corner is (x0, y0).
  PixelSurface(std::shared_ptr<PixelBuffer> buffer, int32_t x0, int32_t y0);

  const PixelBox& box() const { return box_; }
  /// Smallest box of the pixels that were announced as painted.
  const PixelBox& painted() const { return painted_; }
  const std::shared_ptr<PixelBuffer>& buffer() const { return buffer_; }
  /// Rows that may hold anything but transparent pixels.
  PixelBox used() const;

  /// The pixel (x, y), which must lie inside the box, and those right of it. Whoever writes them
  /// announces the box that was painted before anything else uses the buffer.
  uint32_t* pixels(int32_t x, int32_t y) { return pixels_ + offset(x, y); }
  const uint32_t* pixels(int32_t x, int32_t y) const { return pixels_ + offset(x, y); }
  /// Pixels from one row to the next.
  ptrdiff_t stride() const { return stride_; }
  void announcePainted(const PixelBox& box);

  /// Makes everything transparent.
  void clear();

 private:
  ptrdiff_t offset(int32_t x, int32_t y) const {
    return static_cast<ptrdiff_t>(y - box_.y0) * stride_ + (x - box_.x0);
  }

  std::shared_ptr<PixelBuffer> buffer_;
  PixelBox box_;
  PixelBox painted_;
  uint32_t* pixels_ = nullptr;
  ptrdiff_t stride_ = 0;
};
