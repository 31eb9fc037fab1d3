#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/pictures/PictureFailure.h"

class NSBitmapImageRep;
struct HelperPicture;

/// A transparent bitmap of whole pixels (fractions of `size` are dropped) with the picture
/// stretched over `rect` of it (origin at the bottom left). Null for sides below 1, for bitmaps
/// larger than a canvas, and when the picture cannot be drawn or a side of its natural size is
/// below `leastSide`. `failure` may be null; it then takes the reason.
std::shared_ptr<NSBitmapImageRep> stretchedPicture(const HelperPicture& picture, const NSSize& size,
                                                   const NSRect& rect, CGFloat leastSide,
                                                   PictureFailure* failure);
