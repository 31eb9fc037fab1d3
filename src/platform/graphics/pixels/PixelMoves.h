#pragma once

#include "platform/graphics/pixels/PixelBuffer.h"

/// A rearrangement of a picture's pixels: first rows become columns (when transposed), then the
/// result is mirrored.
struct PixelMove {
  bool transposed = false;
  bool mirroredX = false;  ///< left and right change places
  bool mirroredY = false;  ///< top and bottom change places
};

inline constexpr PixelMove kQuarterTurnClockwise{true, true, false};
inline constexpr PixelMove kQuarterTurnCounterclockwise{true, false, true};

/// The same pixels in other places; transposing exchanges the sides.
PixelBuffer movedPixels(const PixelBuffer& source, const PixelMove& move);
