#pragma once

#include <array>
#include <cstdint>

#include "platform/graphics/pixels/paint/CompositingOperation.h"

/// Premultiplied red, green, blue and alpha in 0..1.
using UnitPixel = std::array<double, 4>;

UnitPixel unitPixel(uint32_t pixel);

/// (1 - cover) destination + cover f(source, destination), straight from the published formula of
/// the operation, in double precision, one pixel at a time.
UnitPixel referenceBlend(NSCompositingOperation operation, const UnitPixel& source,
                         const UnitPixel& destination, double cover);

/// The largest difference of any channel, in 1/255.
double distance(uint32_t pixel, const UnitPixel& reference);
