#include "platform/graphics/pixels/coverage/CoverageShape.h"

#include "platform/graphics/pixels/coverage/CoverageScaler.h"
#include "platform/graphics/pixels/coverage/RectCoverage.h"

namespace {

/// `boundsIn(box)` on the device; what it knows may be canvas pixels.
template <class BoundsIn>
PixelBox deviceBounds(const CanvasGrid* grid, const PixelBox& box, BoundsIn boundsIn) {
  if (grid == nullptr) return boundsIn(box);
  return intersection(grid->deviceBox(boundsIn(grid->canvasBox(box))), box);
}

}  // namespace

PixelBox FillShape::bounds(const PixelBox& box) const {
  return deviceBounds(style_.grid, box, [this](const PixelBox& within) {
    return fillBox(path_, style_.toDevice, within);
  });
}

void FillShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  coverScaled(style_.grid, clip, sink, [this](const ClipRegion& region, CoverageSink& target) {
    renderer_.fillPath(path_, winding_, style_.toDevice, style_.antialias, region, target);
  });
}

bool FillShape::fills(const PixelBox& box) const {
  if (style_.grid != nullptr) return false;
  const auto rect = deviceRectangle(path_, style_.toDevice);
  return rect && rect->x0 <= box.x0 && rect->y0 <= box.y0 && rect->x1 >= box.x1 &&
         rect->y1 >= box.y1;
}

PixelBox StrokeShape::bounds(const PixelBox& box) const {
  return deviceBounds(cover_.grid, box, [this](const PixelBox& within) {
    return strokeBox(path_, style_, cover_.toDevice, within);
  });
}

void StrokeShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  coverScaled(cover_.grid, clip, sink, [this](const ClipRegion& region, CoverageSink& target) {
    renderer_.strokePath(path_, style_, cover_.toDevice, cover_.antialias, region, target);
  });
}
