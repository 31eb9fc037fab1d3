#include "platform/graphics/CGContext.h"

#include <cmath>
#include <optional>
#include <utility>

#include "platform/graphics/pixels/ImageSource.h"
#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/SpanCompositor.h"

namespace {

/// Bitmap positions (rows from the top) to the user space in which `source`, given from the bottom
/// left, covers `destination`.
CGAffineTransform imageToUser(const NSBitmapImageRep& image, const NSRect& source,
                              const NSRect& destination) {
  const CGFloat sx = NSWidth(destination) / NSWidth(source);
  const CGFloat sy = NSHeight(destination) / NSHeight(source);
  const CGFloat top = static_cast<CGFloat>(image.pixelsHigh()) - NSMaxY(source);
  return {sx, 0, 0, -sy, NSMinX(destination) - NSMinX(source) * sx, NSMaxY(destination) + top * sy};
}

ImagePart wholePixels(const NSRect& part) {
  return {static_cast<int32_t>(std::floor(NSMinX(part))),
          static_cast<int32_t>(std::floor(NSMinY(part))),
          static_cast<int32_t>(std::ceil(NSMaxX(part))),
          static_cast<int32_t>(std::ceil(NSMaxY(part)))};
}

bool finite(const CGAffineTransform& t) {
  return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
         std::isfinite(t.tx) && std::isfinite(t.ty);
}

}  // namespace

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

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination) {
  draw(image, destination, NSZeroRect, state_.operation, state_.alpha);
}

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination, const NSRect& source,
                     NSCompositingOperation operation, CGFloat alpha) {
  if (&image == surface_.bitmap().get()) {
    const auto frozen = image.copy();
    if (frozen != nullptr) draw(*frozen, destination, source, operation, alpha);
    return;
  }
  const NSRect whole{{}, image.size()};
  const NSRect wanted = source == NSZeroRect ? whole : source;
  const NSRect part = NSIntersectionRect(whole, wanted);
  if (NSIsEmptyRect(part) || NSIsEmptyRect(destination)) return;
  const CGAffineTransform toDevice =
      CGAffineTransformConcat(imageToUser(image, wanted, destination), deviceTransform());
  // The part of the destination that the bitmap reaches, in image positions.
  const NSRect partFromTop{{NSMinX(part), NSHeight(whole) - NSMaxY(part)}, part.size};
  const CGAffineTransform toImage = CGAffineTransformInvert(toDevice);
  if (CGAffineTransformDeterminant(toDevice) == 0 || !finite(toImage)) return;
  const PathData outline = pathOfRect(partFromTop);
  const FillShape shape(renderer_, outline, {WindingRule::nonZero, toDevice, antialias()});
  int32_t dx = 0;
  int32_t dy = 0;
  if (movesWholePixels(toImage, &dx, &dy)) {
    drawMoved(image, dx, dy, shape, operation, unitToByte(alpha));
    return;
  }
  const bool nearest = state_.interpolation == NSImageInterpolation::none;
  TransformedImageSource pixels(image, wholePixels(partFromTop), toImage,
                                nearest ? ImageFilter::nearest : ImageFilter::bilinear);
  paint(shape, SpanPaint::rows(pixels, unitToByte(alpha)), operation);
}

void CGContext::drawMoved(const NSBitmapImageRep& image, int32_t dx, int32_t dy,
                          const CoverageShape& shape, NSCompositingOperation operation,
                          uint32_t alpha) {
  const RowRange used = image.usedRows();
  PixelBox imageRows = state_.clip.box();
  imageRows.y0 = static_cast<int32_t>(std::max<int64_t>(imageRows.y0, used.first - dy));
  imageRows.y1 = static_cast<int32_t>(std::min<int64_t>(imageRows.y1, used.end - dy));
  if (!imageRows.empty()) {
    MovedImageSource pixels(image, dx, dy);
    paintInside(state_.clip.intersected(imageRows), shape, SpanPaint::rows(pixels, alpha),
                operation);
  }
  if (keepsDestinationUnderNothing(operation)) return;
  // The rows of the bitmap that nothing was ever drawn on are transparent paint.
  PixelBox above = state_.clip.box();
  PixelBox below = state_.clip.box();
  above.y1 = imageRows.empty() ? above.y1 : imageRows.y0;
  below.y0 = imageRows.empty() ? below.y1 : imageRows.y1;
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
