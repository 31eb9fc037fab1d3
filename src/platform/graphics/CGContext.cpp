#include "platform/graphics/CGContext.h"

#include <cmath>
#include <optional>
#include <utility>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/SpanCompositor.h"

CGContext::CGContext(std::shared_ptr<NSBitmapImageRep> bitmap) : surface_(std::move(bitmap), 0, 0) {
  state_.clip = ClipRegion(surface_.box());
}

void CGContext::saveGState() {
  saved_.push_back(state_);
}

void CGContext::restoreGState() {
  if (saved_.empty()) return;
  state_ = std::move(saved_.back());
  saved_.pop_back();
}

void CGContext::concatenate(const CGAffineTransform& transform) {
  state_.transform = CGAffineTransformConcat(transform, state_.transform);
}

CGAffineTransform CGContext::deviceTransform() const {
  const auto height = static_cast<CGFloat>(surface_.box().height());
  return CGAffineTransformConcat(state_.transform, {1, 0, 0, -1, 0, height});
}

void CGContext::clip(const NSRect& rect) {
  state_.clip = renderer_.clipToRect(rect, deviceTransform(), antialias(), state_.clip);
}

FillStyle CGContext::fillStyle(WindingRule winding) const {
  return {winding, deviceTransform(), antialias()};
}

void CGContext::fill(const NSRect& rect, NSCompositingOperation operation) {
  const PathData path = pathOfRect(rect);
  const bool clears = operation == NSCompositingOperation::clear;
  const uint32_t pixel = clears ? 0 : premultipliedPixel(state_.fillColor, state_.alpha);
  paint(FillShape(renderer_, path, fillStyle(WindingRule::nonZero)), SpanPaint::solid(pixel),
        operation);
}

void CGContext::paintRows(const RowRange& painted, const CoverageShape& shape,
                          const SpanPaint& paint, NSCompositingOperation operation) {
  PixelBox rows = state_.clip.box();
  rows.y0 = static_cast<int32_t>(std::max<int64_t>(rows.y0, painted.first));
  rows.y1 = static_cast<int32_t>(std::min<int64_t>(rows.y1, painted.end));
  if (!rows.empty()) paintInside(state_.clip.intersected(rows), shape, paint, operation);
  if (keepsDestinationUnderNothing(operation)) return;
  // The other rows are transparent paint.
  PixelBox above = state_.clip.box();
  PixelBox below = state_.clip.box();
  above.y1 = rows.empty() ? above.y1 : rows.y0;
  below.y0 = rows.empty() ? below.y1 : rows.y1;
  paintInside(state_.clip.intersected(above), shape, SpanPaint::solid(0), operation);
  paintInside(state_.clip.intersected(below), shape, SpanPaint::solid(0), operation);
}

void CGContext::paintInside(const ClipRegion& clip, const CoverageShape& shape,
                            const SpanPaint& paint, NSCompositingOperation operation) {
  ClipRegion area = clip;
  const bool nothing = paint.source == nullptr && paint.pixel == 0;
  if (nothing) {
    // No operation makes anything of nothing on nothing.
    area = area.intersected(surface_.used());
    const bool erases = !keepsDestinationUnderNothing(operation) && area.isBox();
    if (erases && area.box() == surface_.used() && shape.fills(area.box())) {
      surface_.clear();
      return;
    }
  }
  if (area.isEmpty()) return;
  SpanCompositor compositor(surface_, operation, paint);
  shape.cover(area, compositor);
}
