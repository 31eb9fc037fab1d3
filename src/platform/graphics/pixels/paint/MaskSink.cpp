#include "platform/graphics/pixels/paint/MaskSink.h"

#include <algorithm>
#include <cstring>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/machine/TargetClones.h"

namespace {

TARGET_CLONES void storeAlphas(uint8_t* out, const uint32_t* pixels, uint32_t cover, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    out[i] = static_cast<uint8_t>(divideBy255(alphaOf(pixels[i]) * cover));
  }
}

TARGET_CLONES void storeAlphas(uint8_t* out, const uint32_t* pixels, const uint8_t* covers,
                               int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    out[i] = static_cast<uint8_t>(divideBy255(alphaOf(pixels[i]) * covers[i]));
  }
}

}  // namespace

void MaskSink::row(int32_t y, std::span<const CoverageRun> runs) {
  for (const CoverageRun& run : runs) {
    uint8_t* const out = mask_.row(y) + (run.x - mask_.box().x0);
    const auto length = static_cast<size_t>(run.length);
    if (source_ != nullptr) {
      buffer_.resize(std::max(buffer_.size(), length));
      const uint32_t* const pixels = source_->row(run.x, y, run.length, buffer_.data());
      run.covers != nullptr ? storeAlphas(out, pixels, run.covers, run.length)
                            : storeAlphas(out, pixels, uint32_t{run.cover}, run.length);
    } else if (run.covers != nullptr) {
      std::memcpy(out, run.covers, length);
    } else {
      std::memset(out, run.cover, length);
    }
  }
}
