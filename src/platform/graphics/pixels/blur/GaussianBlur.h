#pragma once

#include <memory>

#include "platform/graphics/pixels/coverage/AlphaMask.h"

/// Shadows reach at most this far beyond their shape, in pixels.
inline constexpr int kMaxBlurReach = 1000;

/// How far a blur reaches, in whole pixels: `blur` rounded, within 0..kMaxBlurReach; 0 for NaN.
int blurReach(double blur);

/// How far from a pixel the mask matters to what `blur` makes of it: blurReach, and what cells
/// reach beyond. A mask that is cut further away gives the same pixels.
int blurSupport(double blur);

/// A mask convolved with a Gaussian of standard deviation blur / 2 that is cut off beyond
/// blurReach(blur) pixels and scaled to the sum 1, in both directions; the pixels outside the mask
/// count as 0. Rounded to nearest up to a reach of 16, within 1.5 of 255 of that definition beyond.
///
/// Up to a reach of 16 the sum is taken pixel by pixel. Larger ones are computed from means of
/// cells of 2 to 64 pixels a side, enough for a shape that smooth, and interpolated linearly; so
/// the cost per pixel does not grow with the blur. Only a few rows are held at a time.
class BlurredRows {
 public:
  /// Only the part inside `wanted` is computed. The mask must outlive the rows.
  BlurredRows(const AlphaMask& mask, double blur, const PixelBox& wanted);
  ~BlurredRows();
  BlurredRows(const BlurredRows&) = delete;
  BlurredRows& operator=(const BlurredRows&) = delete;

  /// The part of `wanted` where the result is not 0 everywhere, or a box that holds it; there are
  /// no rows of an empty one.
  const PixelBox& box() const { return box_; }
  /// Row y from the box's first column on, which those up to `end` (past y) are known to equal. y
  /// must lie inside the box; rows are asked for from the top down. Valid until the next call.
  struct Row {
    const uint8_t* bytes;
    int32_t end;
  };
  Row row(int32_t y);

  /// Where rows come from; they may end below the box.
  class Source {
   public:
    virtual ~Source() = default;
    virtual Row row(int32_t y) = 0;
  };

 private:
  PixelBox box_;
  std::unique_ptr<Source> source_;
};
