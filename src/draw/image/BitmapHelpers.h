#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

// Functions that make bitmaps of bitmaps. Arguments never change, except those of the two clearing
// functions; results are new and have an alpha channel. Rectangles are in pixels, origin bottom
// left, y upwards. A null bitmap gives null, and so does a result that is too large.

using NSBitmapImageRepPointer = std::shared_ptr<NSBitmapImageRep>;

/// The rectangle's pixels become transparent, those that it covers in part in proportion.
void ClearImageInRect(const NSBitmapImageRepPointer& image, const NSRect& rect);
/// All pixels become transparent.
void ClearImage(const NSBitmapImageRepPointer& image);

/// Stretched to width x height by the resampling filter. The result has whole pixels (truncated);
/// what a fraction puts beyond them is cut off.
NSBitmapImageRepPointer ResizeImage(const NSBitmapImageRepPointer& image, CGFloat width,
                                    CGFloat height);

/// A bitmap of the rectangle's size (truncated) with the rectangle's lower left corner at its
/// origin; transparent where the rectangle leaves the bitmap. Null for sides below 1.
NSBitmapImageRepPointer CropImage(const NSBitmapImageRepPointer& image, const NSRect& rect);

/// Mirrored: left and right change places, or top and bottom.
NSBitmapImageRepPointer ImageFliped(const NSBitmapImageRepPointer& image, bool horizontal);

/// Turned by a quarter turn, counter-clockwise or clockwise.
NSBitmapImageRepPointer ImageRotated(const NSBitmapImageRepPointer& image, bool counterclockwise);

/// The smallest rectangle that holds every pixel with any alpha; zero when there is none.
NSRect ImageRectByTrimEmpty(const NSBitmapImageRepPointer& image);
