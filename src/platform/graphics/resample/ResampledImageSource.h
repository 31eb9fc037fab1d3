#pragma once

#include <cstdint>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/paint/RowSource.h"
#include "platform/graphics/resample/Resampler.h"

/// A bitmap scaled by the resampler, as paint. Each row is computed once, when a part of it is
/// first asked for.
class ResampledImageSource final : public RowSource {
 public:
  /// Only pixels of `visible` may be asked for; the rest as for Resampler.
  ResampledImageSource(const NSBitmapImageRep& image, const ResampleMapping& mapping,
                       const PixelBox& visible)
      : resampler_(image, mapping, visible), visible_(visible) {}

  /// Rows that may hold anything but transparent pixels.
  RowRange paintedRows() const { return resampler_.paintedRows(); }

  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override;

 private:
  Resampler resampler_;
  PixelBox visible_;
  const uint32_t* pixels_ = nullptr;
  int32_t pixelsRow_ = 0;
};
