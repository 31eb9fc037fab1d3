#include "platform/graphics/pixels/coverage/CoverageShape.h"

#include "platform/graphics/pixels/coverage/RectCoverage.h"

PixelBox FillShape::bounds(const PixelBox& box) const {
  return fillBox(path_, style_.toDevice, box);
}

void FillShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  renderer_.fillPath(path_, style_.winding, style_.toDevice, style_.antialias, clip, sink);
}

bool FillShape::fills(const PixelBox& box) const {
  const auto rect = deviceRectangle(path_, style_.toDevice);
  return rect && rect->x0 <= box.x0 && rect->y0 <= box.y0 && rect->x1 >= box.x1 &&
         rect->y1 >= box.y1;
}

PixelBox StrokeShape::bounds(const PixelBox& box) const {
  return strokeBox(path_, style_, toDevice_, box);
}

void StrokeShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  renderer_.strokePath(path_, style_, toDevice_, antialias_, clip, sink);
}
