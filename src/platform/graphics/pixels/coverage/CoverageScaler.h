#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/coverage/CanvasGrid.h"
#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/coverage/ScanConverter.h"

/// Takes the coverage of canvas pixels and hands on that of the device pixels that show them: the
/// mean of what a device pixel shows. So a canvas pixel that is covered in full, as without
/// antialiasing, is repeated where the canvas is enlarged and counts by its area where it is
/// reduced.
class CoverageScaler final : public CoverageSink {
 public:
  /// Hands on what lies in `box`, device pixels. The sink must outlive this object. Rows come from
  /// the top down, in one sweep.
  CoverageScaler(const CanvasGrid& grid, const PixelBox& box, CoverageSink& next);

  void row(int32_t y, std::span<const CoverageRun> runs) override {
    CoverageScaler::rows(y, y + 1, runs);
  }
  void rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) override;

  /// Hands on the last row. To be called once, after all others.
  void finish() { emitPending(); }

 private:
  /// A device position on a grid so fine that rounding to it cannot be seen. Sums of whole numbers
  /// do not depend on what else is added up.
  using Fixed = int64_t;

  void add(std::span<const CoverageRun> runs, Fixed weight);
  void add(Fixed x0, Fixed x1, int64_t weight);
  void addPart(int32_t y, std::span<const CoverageRun> runs, Fixed weight);
  void emit(int32_t y0, int32_t y1);
  void emitPending();

  CanvasGrid grid_;
  PixelBox box_;
  CoverageSink& next_;
  /// Changes of the coverage from pixel to pixel, of the pixels [first_, end_) of the box.
  std::vector<int64_t> changes_;
  int64_t first_ = 0;
  int64_t end_ = 0;
  std::optional<int32_t> pending_;  ///< the device row that changes_ are of
  std::vector<uint8_t> covers_;
  CoverSplitter splitter_;
};

/// Calls `cover(clip, sink)` for the coverage of device pixels; with a grid for that of canvas
/// pixels, which is scaled. Wide clips are covered in strips side by side.
template <class Cover>
void coverScaled(const CanvasGrid* grid, const ClipRegion& clip, CoverageSink& sink, Cover cover) {
  if (grid == nullptr) return cover(clip, sink);
  ClipSink clipped(clip, sink);
  CoverageSink& target = clip.isBox() ? sink : clipped;
  const double widest = ScanConverter::kStripWidth * grid->scale - 2;
  const auto strip = static_cast<int32_t>(std::fmax(1, std::fmin(widest, 1 << 30)));
  const PixelBox& all = clip.box();
  for (int64_t x = all.x0; x < all.x1; x += strip) {
    const auto end = static_cast<int32_t>(std::min<int64_t>(all.x1, x + strip));
    const PixelBox box{static_cast<int32_t>(x), all.y0, end, all.y1};
    CoverageScaler scaler(*grid, box, target);
    cover(ClipRegion(grid->canvasBox(box)), scaler);
    scaler.finish();
  }
}
