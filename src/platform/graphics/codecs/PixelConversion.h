#pragma once

#include <cstddef>
#include <cstdint>

/// Rows of pixels between the forms of files and the premultiplied form of bitmaps. Pixels are R,
/// G, B, A bytes; `in` and `out` may be the same row.

/// colour * alpha / 255, rounded to nearest.
void premultiplyRow(const uint8_t* in, uint8_t* out, size_t pixelCount);

/// colour * 255 / alpha, rounded to nearest, halves up; no more than 255 and zero without alpha.
void unpremultiplyRow(const uint8_t* in, uint8_t* out, size_t pixelCount);

/// Inks (cyan, magenta, yellow, black; 255 is full) to opaque pixels, without a profile:
/// (1 - ink) * (1 - black), rounded to nearest.
void inksToOpaqueRow(const uint8_t* in, uint8_t* out, size_t pixelCount);

/// True when every alpha is 255.
bool isOpaqueRow(const uint8_t* row, size_t pixelCount);
