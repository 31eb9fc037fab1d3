#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class ImageMask;
class NSBezierPath;
class NSBitmapImageRep;
class NSColor;

/// The paint bucket's search: the pixels of a bitmap that a step left, right, up or down at a time
/// lead to from a seed, all of whose colours lie within a tolerance of the seed's.
///
/// Points and rectangles count from the bitmap's lower left corner, y upwards. The distances from
/// the seed's colour are worked out once; other tolerances repeat the search only. Until the first
/// search there is no region: no mask, nothing filled.
class ImageFill : public NSObject {
 public:
  /// Seeds the search at the pixel whose column and row are the coordinates rounded half away from
  /// zero. Null without a bitmap, and for a seed outside it. The bitmap is
  /// kept and must not change.
  static std::shared_ptr<ImageFill> initWithImage(std::shared_ptr<NSBitmapImageRep> image,
                                                  NSPoint point);

  /// The colour of further fills: its straight components as bytes; null is four zeros.
  void setFillColor(const NSColor* color);
  /// Finds the region of the pixels whose channels, as stored, differ by at most `tolerance` (0 to
  /// 255) from the seed's. Asked for the tolerance of the last search it does
  /// nothing.
  void fillWithTolerance(uint32_t tolerance);

  /// The region in its smallest rectangle; null without one.
  std::shared_ptr<ImageMask> imageMask() const;
  /// A mask of the whole bitmap with everything in but the region.
  std::shared_ptr<ImageMask> invertedImageMask() const;
  /// The smallest rectangle around the region; the zero rectangle without one.
  NSRect fillRect() const;
  /// The outline of the region along the edges of its pixels, counter-clockwise, holes clockwise.
  std::shared_ptr<NSBezierPath> fillBorder() const;
  /// Whether the pixel that holds the point is in the region.
  bool isPointFilled(NSPoint point) const;

  NSPoint startPoint() const;
  /// The tolerance of the region; 256 without one.
  uint32_t tolerance() const { return toleranceSearch_; }
  const std::shared_ptr<NSBitmapImageRep>& inputImage() const { return imgSrc_; }
  int32_t inputWidth() const { return w_; }
  int32_t inputHeight() const { return h_; }
  /// A bitmap of the source's size with the fill colour in the region and transparency elsewhere.
  /// Null without a region, or without memory for it. Painted when it is asked for: whoever only
  /// wants the mask does not pay for it.
  const std::shared_ptr<NSBitmapImageRep>& fillImage();
  /// Whether filling changes a pixel. When the whole bitmap is the region this only says that the
  /// bitmap has more than one colour.
  bool isFillNeeded() const { return bFillNeeded_; }
  /// Whether the region is the whole bitmap.
  bool isFillAllRect() const { return bFillAll_; }

 private:
  /// Pixels [x0, x1) of a row, reached from the row y - dy, whose pixels [from0, from1) were taken
  /// before.
  struct Span {
    int32_t x0, x1, y, dy, from0, from1;
  };

  void measureTolerances();
  size_t pixelCount() const { return static_cast<size_t>(w_) * static_cast<size_t>(h_); }
  size_t indexOf(int32_t x, int32_t y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(w_) + static_cast<size_t>(x);
  }
  bool hasRegion() const { return search_ != nullptr; }
  uint32_t fillColorPixel() const;
  bool seedHasFillColor() const;
  void fillAll();
  void searchPoints();
  void takeSpan(const Span& span);
  void searchRow(const Span& from, int32_t dy, int32_t x0, int32_t x1);
  /// Paints what was found since the last painting, in the colour it was found with.
  void paintRegion();
  bool regionDiffersFromSeed() const;

  std::shared_ptr<NSBitmapImageRep> imgSrc_;
  int32_t w_ = 0;
  int32_t h_ = 0;
  int32_t xStart_ = 0;
  int32_t yStart_ = 0;  ///< row from the top
  /// For each pixel the largest difference of any channel from the seed's.
  std::unique_ptr<uint8_t[]> tolerance_;
  uint8_t maxTolerance_ = 0;
  uint8_t rFill_ = 0, gFill_ = 0, bFill_ = 0, aFill_ = 0;
  bool bFillAll_ = false;
  bool bFillNeeded_ = false;
  /// For each pixel 0: may be reached, 1: beyond the tolerance, 2: in the region.
  std::unique_ptr<uint8_t[]> search_;
  uint32_t toleranceSearch_ = 256;
  std::shared_ptr<NSBitmapImageRep> imgDst_;
  bool bPainted_ = true;
  // The region's bounds, all inclusive, rows from the top.
  int32_t x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
  /// Parts of the region whose neighbours have not been looked at.
  std::vector<Span> reached_;
};
