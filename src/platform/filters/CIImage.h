#pragma once

#include <limits>
#include <memory>

#include "platform/filters/image/ImageOperation.h"
#include "platform/foundation/Geometry.h"

class ColorOperation;

/// What an image that never ends answers as its extent.
inline constexpr CGFloat kFarAway = std::numeric_limits<CGFloat>::max() / 2;
inline constexpr NSRect kInfiniteExtent{{-kFarAway, -kFarAway}, {2 * kFarAway, 2 * kFarAway}};

/// The recipe for a picture: pixels are computed when a bitmap of it is made. Immutable.
/// Coordinates are pixels, y upwards; a bitmap's lower left corner is the origin. Outside its
/// extent an image is transparent.
///
/// Between two operations the picture is rounded to 8 bits.
class CIImage : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  /// Null for no bitmap and for one without pixels. The bitmap must not change any more.
  static std::shared_ptr<const CIImage> initWithBitmapImageRep(
      std::shared_ptr<const NSBitmapImageRep> bitmap);

  NSRect extent() const;
  /// The part inside the rectangle, rounded outward to whole pixels; null when that is empty.
  std::shared_ptr<const CIImage> imageByCroppingToRect(const NSRect& rect) const;
  /// Goes on for ever in all directions with the pixels of the edges.
  std::shared_ptr<const CIImage> imageByClampingToExtent() const;
  std::shared_ptr<const CIImage> imageByApplying(
      std::shared_ptr<const ImageOperation> operation) const;
  /// Colour operations in a row are done in one pass.
  std::shared_ptr<const CIImage> imageByApplying(
      std::shared_ptr<const ColorOperation> operation) const;

  /// A new bitmap of the extent; null when that is infinite or too large for a bitmap.
  std::shared_ptr<NSBitmapImageRep> bitmap() const;

  /// A box of whole pixels, y upwards.
  struct Box {
    int64_t x0 = 0;
    int64_t y0 = 0;
    int64_t x1 = 0;
    int64_t y1 = 0;
    bool empty() const { return x0 >= x1 || y0 >= y1; }
  };
  /// How the pixels are made.
  class Recipe;
  CIImage(std::shared_ptr<const Recipe> recipe, const Box& box, Surround surround)
      : recipe_(std::move(recipe)), box_(box), surround_(surround) {}

 private:
  std::shared_ptr<const CIImage> self() const { return std::make_shared<CIImage>(*this); }

  std::shared_ptr<const Recipe> recipe_;
  /// The extent, or of an endless image the part that is not just its edges.
  Box box_;
  Surround surround_;
};
