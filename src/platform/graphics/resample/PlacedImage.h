#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/paint/RowSource.h"

/// How a bitmap is laid onto the device. Image positions are in pixels, rows from the top.
struct ImagePlacement {
  NSRect part;                 ///< what is shown, in image positions; inside the bitmap, not empty
  CGAffineTransform toDevice;  ///< image positions to device positions
};

enum class ImageQuality : uint8_t {
  nearest,   ///< the pixel that the centre of the device pixel falls on
  bilinear,  ///< between the four pixels around it
  /// The resampling filter; when turned, its four taps in either direction, on a bitmap that is
  /// reduced before where it is seen reduced.
  filtered,
};

/// A bitmap as paint. Pixels that lie outside the shown part repeat its edge.
struct PlacedImage {
  /// Null when the placement has no finite inverse or nothing is visible.
  std::unique_ptr<RowSource> source;
  /// The paint is transparent in all other rows.
  RowRange rows;
};

/// The pixels of a bitmap as `placement` lays it, for the device pixels of `visible` only.
/// Placements that move whole pixels are copied. The bitmap must outlive the result and stay
/// unchanged.
PlacedImage placeImage(const NSBitmapImageRep& image, const ImagePlacement& placement,
                       ImageQuality quality, const PixelBox& visible);
