#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"

using Pixel = std::array<uint8_t, 4>;

/// A bitmap whose pixels, premultiplied and rows from the top, are what `pixel(x, y)` answers.
std::shared_ptr<NSBitmapImageRep> makeBitmap(int64_t width, int64_t height,
                                             const std::function<Pixel(int64_t, int64_t)>& pixel);

/// Independent random premultiplied pixels, the same ones for the same seed.
std::shared_ptr<NSBitmapImageRep> randomBitmap(int64_t width, int64_t height, unsigned seed);

Pixel pixelAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y);

/// Greatest difference of any channel of any pixel; 256 when the sizes differ.
int maxDifference(const NSBitmapImageRep& a, const NSBitmapImageRep& b);
