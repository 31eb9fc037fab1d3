#include "platform/graphics/resample/ResampledImageSource.h"

#include <algorithm>

const uint32_t* ResampledImageSource::row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) {
  if (y < paintedRows().first || y >= paintedRows().end) {
    std::fill_n(buffer, n, 0U);
    return buffer;
  }
  if (pixels_ == nullptr || y != pixelsRow_) {
    const void* const bytes = resampler_.row(y);
    pixels_ = static_cast<const uint32_t*>(bytes);
    pixelsRow_ = y;
  }
  return pixels_ + (x - visible_.x0);
}
