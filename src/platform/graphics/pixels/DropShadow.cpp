#include "platform/graphics/pixels/DropShadow.h"

#include "platform/graphics/pixels/AlphaMask.h"
#include "platform/graphics/pixels/GaussianBlur.h"
#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/SpanCompositor.h"

PixelBox castingBox(const DropShadow& shadow, const PixelBox& box) {
  return movedAndGrown(box, -shadow.dx, -shadow.dy, blurReach(shadow.blur));
}

void paintShadow(PixelSurface& surface, const ClipRegion& clip, const CoverageShape& shape,
                 const SpanPaint& paint, NSCompositingOperation operation,
                 const DropShadow& shadow) {
  const uint32_t alpha = paint.source == nullptr ? alphaOf(paint.pixel) : paint.alpha;
  const uint32_t pixel = premultipliedPixel(shadow.color, alpha / 255.0);
  if (pixel == 0 || clip.isEmpty()) return;
  AlphaMask mask(shape.bounds(castingBox(shadow, clip.box())));
  if (mask.box().empty()) return;
  MaskSink sink(mask, paint.source);
  shape.cover(ClipRegion(mask.box()), sink);
  const PixelBox wanted = movedAndGrown(clip.box(), -shadow.dx, -shadow.dy, 0);
  const AlphaMask blurred =
      blurReach(shadow.blur) > 0 ? gaussianBlur(mask, shadow.blur, wanted) : std::move(mask);
  SpanCompositor compositor(surface, operation, SpanPaint::solid(pixel));
  MaskShape(blurred, shadow.dx, shadow.dy).cover(clip, compositor);
}
