#pragma once

#include <cmath>

#include "platform/foundation/Geometry.h"

// What draws share that make a bitmap of a document.

inline constexpr const char* kFlipHorizontal = "FlipHorizontal";
inline constexpr const char* kFlipVertical = "FlipVertical";

/// The whole pixels of a draw's bitmap, halves rounded away from zero.
inline NSSize rasterSize(const NSRect& bounds) {
  return {std::round(NSWidth(bounds)), std::round(NSHeight(bounds))};
}
