#pragma once

#include <cstddef>
#include <cstdint>

/// Pictures seen between their pixels: Catmull-Rom, the cubic convolution kernel with a = -1/2
/// (R. Keys, 1981), over four by four pixels. All arithmetic is in whole numbers, so that every
/// processor gives the same bytes.

/// Positions between two pixels are told apart in this many steps.
inline constexpr int kFourTapSteps = 256;

/// Sixteen premultiplied pixels around a position, whose upper left neighbour is the second of the
/// second row.
struct FourTapWindow {
  const uint32_t* first = nullptr;  ///< of four rows of four pixels, which lie `stride` apart
  ptrdiff_t stride = 4;             ///< in pixels
  int32_t right = 0;                ///< from that neighbour, in steps: 0 to kFourTapSteps
  int32_t down = 0;
};

/// The pixel at each window's position: rounded, alpha clamped to a byte, the colours to alpha. On
/// a pixel's own position that pixel; uniform areas keep their exact value.
void fourTapPixels(const FourTapWindow* windows, int32_t count, uint32_t* out);
