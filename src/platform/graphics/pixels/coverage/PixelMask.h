#pragma once

#include <cstdint>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageShape.h"

/// A region of whole canvas pixels: a byte for each pixel of a box, rows top first, 0 for those
/// outside of the region. Owns no bytes.
struct PixelMask {
  const uint8_t* bytes = nullptr;
  int64_t bytesPerRow = 0;
  PixelBox box;  ///< in canvas pixels, rows from the top

  const uint8_t* at(int32_t x, int32_t y) const {
    return bytes + (int64_t{y} - box.y0) * bytesPerRow + (x - box.x0);
  }
};

/// A mask as a shape, on a device that shows its canvas at a scale.
class PixelMaskShape final : public CoverageShape {
 public:
  /// The mask's bytes and the grid must outlive the shape.
  PixelMaskShape(const PixelMask& mask, const CanvasGrid& grid) : mask_(mask), grid_(grid) {}
  PixelBox bounds(const PixelBox& box) const override {
    return intersection(grid_.deviceBox(mask_.box), box);
  }
  void cover(const ClipRegion& clip, CoverageSink& sink) const override;
  bool fills(const PixelBox&) const override { return false; }

 private:
  void coverCanvas(const PixelBox& box, CoverageSink& sink) const;

  PixelMask mask_;
  const CanvasGrid& grid_;
};
