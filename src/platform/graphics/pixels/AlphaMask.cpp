#include "platform/graphics/pixels/AlphaMask.h"

#include <algorithm>
#include <cstring>

#include "platform/TargetClones.h"
#include "platform/graphics/pixels/PixelMath.h"

namespace {

VECTOR_CLONES void storeAlphas(uint8_t* out, const uint32_t* pixels, uint32_t cover, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    out[i] = static_cast<uint8_t>(divideBy255(alphaOf(pixels[i]) * cover));
  }
}

VECTOR_CLONES void storeAlphas(uint8_t* out, const uint32_t* pixels, const uint8_t* covers,
                               int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    out[i] = static_cast<uint8_t>(divideBy255(alphaOf(pixels[i]) * covers[i]));
  }
}

/// The number of zero bytes at the front.
int32_t leadingZeros(const uint8_t* bytes, int32_t n) {
  int32_t i = 0;
  for (uint64_t eight = 0; i + 8 <= n; i += 8) {
    std::memcpy(&eight, bytes + i, 8);
    if (eight != 0) break;
  }
  while (i < n && bytes[i] == 0) ++i;
  return i;
}

}  // namespace

AlphaMask::AlphaMask(const PixelBox& box) {
  if (box.empty()) return;
  bytes_ = ZeroedMemory(static_cast<size_t>(box.width()) * static_cast<size_t>(box.height()));
  if (!bytes_.empty()) box_ = box;
}

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

PixelBox MaskShape::bounds(const PixelBox& box) const {
  const PixelBox& own = mask_.box();
  return intersection({own.x0 + dx_, own.y0 + dy_, own.x1 + dx_, own.y1 + dy_}, box);
}

void MaskShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  const PixelBox visible = bounds(clip.box());
  if (visible.empty()) return;
  ClipSink clipped(clip, sink);
  CoverageSink& target = clip.isBox() ? sink : clipped;
  for (int32_t y = visible.y0; y < visible.y1; ++y) {
    const uint8_t* const covers = mask_.row(y - dy_) + (visible.x0 - dx_ - mask_.box().x0);
    const auto width = static_cast<int32_t>(visible.width());
    const int32_t skipped = leadingZeros(covers, width);
    if (skipped == width) continue;
    const CoverageRun run{visible.x0 + skipped, width - skipped, covers + skipped, 0};
    target.row(y, {&run, 1});
  }
}
