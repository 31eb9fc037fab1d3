#include "platform/graphics/pixels/coverage/PixelMask.h"

#include "platform/graphics/pixels/coverage/CoverageScaler.h"

void PixelMaskShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  coverScaled(&grid_, clip, sink, [this](const ClipRegion& region, CoverageSink& target) {
    coverCanvas(intersection(region.box(), mask_.box), target);
  });
}

void PixelMaskShape::coverCanvas(const PixelBox& box, CoverageSink& sink) const {
  if (box.empty()) return;
  std::vector<CoverageRun> runs;
  for (int32_t y = box.y0; y < box.y1; ++y) {
    const uint8_t* const row = mask_.at(box.x0, y);
    const auto width = static_cast<int32_t>(box.width());
    runs.clear();
    for (int32_t x = 0; x < width;) {
      const int32_t first = x;
      const bool inside = row[x] != 0;
      while (x < width && (row[x] != 0) == inside) ++x;
      if (inside) runs.push_back({box.x0 + first, x - first, nullptr, 255});
    }
    if (!runs.empty()) sink.row(y, runs);
  }
}
