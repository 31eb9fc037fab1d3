#include "platform/graphics/pixels/blur/DropShadow.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/blur/GaussianBlur.h"
#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/paint/MaskSink.h"
#include "platform/graphics/pixels/paint/SpanCompositor.h"

namespace {

/// An offset as whole pixels and the fraction of one, 0 to 1, that is left.
struct ShadowOffset {
  int32_t dx;
  int32_t dy;
  double x;
  double y;

  explicit ShadowOffset(const DropShadow& shadow)
      : dx(static_cast<int32_t>(std::floor(shadow.dx))),
        dy(static_cast<int32_t>(std::floor(shadow.dy))),
        x(shadow.dx - dx),
        y(shadow.dy - dy) {}
  bool isWhole() const { return x == 0 && y == 0; }
};

/// `out` becomes `row` moved to the right by a fraction of a pixel: n pixels and one more.
void moveRow(const uint8_t* row, int32_t n, double fraction, double* out) {
  double before = 0;
  for (int32_t i = 0; i < n; ++i) {
    out[i] = before * fraction + row[i] * (1 - fraction);
    before = row[i];
  }
  out[n] = before * fraction;
}

/// The mask moved to the right and down by less than a pixel: each pixel is shared out among those
/// that it then lies on.
AlphaMask movedByFraction(const AlphaMask& mask, double x, double y) {
  const PixelBox& box = mask.box();
  AlphaMask moved({box.x0, box.y0, box.x1 + 1, box.y1 + 1});
  const auto n = static_cast<int32_t>(box.width());
  std::vector<double> above(static_cast<size_t>(n) + 1), row(above.size());
  for (int32_t at = box.y0; at <= box.y1; ++at) {
    if (at < box.y1) {
      moveRow(mask.row(at), n, x, row.data());
    } else {
      std::fill(row.begin(), row.end(), 0.0);
    }
    uint8_t* const out = moved.row(at);
    for (size_t i = 0; i < row.size(); ++i) {
      out[i] = static_cast<uint8_t>(std::lrint(above[i] * y + row[i] * (1 - y)));
    }
    above.swap(row);
  }
  return moved;
}

}  // namespace

PixelBox castingBox(const DropShadow& shadow, const PixelBox& box) {
  const ShadowOffset offset(shadow);
  return movedAndGrown(box, -offset.dx, -offset.dy,
                       blurSupport(shadow.blur) + (offset.isWhole() ? 0 : 1));
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
  const ShadowOffset offset(shadow);
  if (!offset.isWhole()) mask = movedByFraction(mask, offset.x, offset.y);
  BlurredRows blurred(mask, shadow.blur, movedAndGrown(clip.box(), -offset.dx, -offset.dy, 0));
  const PixelBox& box = blurred.box();
  if (box.empty()) return;
  SpanCompositor compositor(surface, operation, SpanPaint::solid(pixel));
  ClipSink clipped(clip, compositor);
  CoverageSink& target = clip.isBox() ? static_cast<CoverageSink&>(compositor) : clipped;
  CoverSplitter splitter;
  for (int32_t y = box.y0; y < box.y1;) {
    const BlurredRows::Row row = blurred.row(y);
    splitter.rows({box.x0 + offset.dx, y + offset.dy, box.x1 + offset.dx, row.end + offset.dy},
                  row.bytes, target);
    y = row.end;
  }
}
