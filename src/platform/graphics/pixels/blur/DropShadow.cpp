#include "platform/graphics/pixels/blur/DropShadow.h"

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/blur/GaussianBlur.h"
#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/paint/MaskSink.h"
#include "platform/graphics/pixels/paint/SpanCompositor.h"

PixelBox castingBox(const DropShadow& shadow, const PixelBox& box) {
  return movedAndGrown(box, -shadow.dx, -shadow.dy, blurSupport(shadow.blur));
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
  BlurredRows blurred(mask, shadow.blur, movedAndGrown(clip.box(), -shadow.dx, -shadow.dy, 0));
  const PixelBox& box = blurred.box();
  if (box.empty()) return;
  SpanCompositor compositor(surface, operation, SpanPaint::solid(pixel));
  ClipSink clipped(clip, compositor);
  CoverageSink& target = clip.isBox() ? static_cast<CoverageSink&>(compositor) : clipped;
  CoverSplitter splitter;
  for (int32_t y = box.y0; y < box.y1;) {
    const BlurredRows::Row row = blurred.row(y);
    splitter.rows({box.x0 + shadow.dx, y + shadow.dy, box.x1 + shadow.dx, row.end + shadow.dy},
                  row.bytes, target);
    y = row.end;
  }
}
