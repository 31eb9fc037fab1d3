#pragma once

#include <cstdint>
#include <memory>

class NSBitmapImageRep;

/// A rearrangement of a picture's pixels: first rows become columns (when transposed), then the
/// result is mirrored.
struct PixelMove {
  bool transposed = false;
  bool mirroredX = false;  ///< left and right change places
  bool mirroredY = false;  ///< top and bottom change places
};

inline constexpr PixelMove kQuarterTurnClockwise{true, true, false};
inline constexpr PixelMove kQuarterTurnCounterclockwise{true, false, true};

/// A new bitmap with the same pixels in other places; transposing exchanges its sides.
std::shared_ptr<NSBitmapImageRep> movedPixels(const NSBitmapImageRep& source,
                                              const PixelMove& move);
