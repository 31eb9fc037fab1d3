#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/filters/color/ColorCacheEntries.h"
#include "platform/filters/color/ColorStage.h"

/// Colour filters' results by pixel value: pictures repeat their colours far more often than they
/// show new ones, and finding a result costs less than several filters.
class ColorCache {
 public:
  /// Fewer pixels than this are better computed.
  static constexpr size_t kLeastPixels = size_t{1} << 16;

  /// For pixels that come out somewhere in the 2^32 from `origin` on.
  ColorCache(const std::vector<ColorStage>& stages, uint32_t* origin);

  /// `out` lies in those pixels. The results are all there after finish() only.
  void apply(const uint32_t* in, uint32_t* out, size_t count);
  void finish();

 private:
  /// Results of the first waiting pixels, at most kColorBatch.
  void compute(size_t count);

  const std::vector<ColorStage>& stages_;
  uint32_t* origin_;
  std::vector<uint32_t> entries_;
  /// Batches to do without looking up, after batches of mostly new colours.
  size_t skipped_ = 0;
  size_t toSkip_ = 0;
  /// Pixels that were not found wait until there is a batch of them.
  size_t waiting_ = 0;
  static constexpr size_t kMostWaiting = 2 * kColorBatch + 16;  // as findEntries needs
  uint32_t pixels_[kMostWaiting];
  uint32_t places_[kMostWaiting];
};
