#pragma once

#include <cstddef>

/// Sums weights[0] * taps[radius] + weights[k] * (taps[radius - k] + taps[radius + k]) for
/// k = 1 to radius, for each of `count` positions. Neighbouring rows give the vertical half of a
/// separable filter; one row at neighbouring offsets gives the horizontal half.
void weighSymmetric(const float* const* taps, const float* weights, size_t radius, float* out,
                    size_t count);
/// The same in plain loops, for comparison.
void weighSymmetricScalar(const float* const* taps, const float* weights, size_t radius, float* out,
                          size_t count);

/// Every second pixel of the row filtered with (1, 4, 6, 4, 1) / 16. `in` is the pixel that the
/// first result is centred on.
void halveRow(const float* in, size_t channels, float* out, size_t pixelCount);

/// Twice as many pixels: (1, 6, 1) / 8 at pixels of the row, (1, 1) / 2 between them. `in` is the
/// pixel that out pixel 0 is centred on, or, when `odd` is 1, the one before the gap it lies in.
void doubleRow(const float* in, size_t channels, size_t odd, float* out, size_t pixelCount);
