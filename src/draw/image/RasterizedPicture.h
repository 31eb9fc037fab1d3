#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/codecs/PictureCache.h"

// What draws share that make a bitmap of a document.

inline constexpr const char* kFlipHorizontal = "FlipHorizontal";
inline constexpr const char* kFlipVertical = "FlipVertical";

/// The whole pixels of a draw's bitmap at a scale, halves rounded away from zero. What is at least
/// a pixel at scale 1 is so at every scale.
inline NSSize rasterSize(const NSRect& bounds, CGFloat scale) {
  const auto pixels = [scale](CGFloat side) {
    const CGFloat whole = std::round(side);
    return scale == 1 || !(whole >= 1) ? whole : std::fmax(1, std::round(side * scale));
  };
  return {pixels(NSWidth(bounds)), pixels(NSHeight(bounds))};
}

/// The bitmap that `draw` makes of a document in that size, or the one that the document drawn now
/// remembers, which must not be changed.
inline std::shared_ptr<NSBitmapImageRep> rememberedRaster(
    PictureKey::Kind kind, const std::shared_ptr<NSData>& data, const NSSize& size, int64_t variant,
    const std::function<std::shared_ptr<NSBitmapImageRep>()>& draw) {
  // What does not fit into numbers is no size of a bitmap either.
  constexpr CGFloat kLargest = 1e9;
  if (!(std::abs(size.width) < kLargest && std::abs(size.height) < kLargest)) return draw();
  const PictureKey key{
      kind,
      {static_cast<int64_t>(size.width), static_cast<int64_t>(size.height), variant},
      data->bytes(),
      data};
  return remembered<NSBitmapImageRep>(key, PictureCache::Keep::whenRepeated, draw, pixelBytes);
}
