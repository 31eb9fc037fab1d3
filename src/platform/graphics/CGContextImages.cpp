#include <algorithm>

#include "platform/graphics/CGContext.h"
#include "platform/graphics/PlacedImage.h"

namespace {

/// Image positions to the user space in which `source`, given from the bottom left, covers
/// `destination`.
CGAffineTransform imageToUser(const NSBitmapImageRep& image, const NSRect& source,
                              const NSRect& destination) {
  const CGFloat sx = NSWidth(destination) / NSWidth(source);
  const CGFloat sy = NSHeight(destination) / NSHeight(source);
  const CGFloat top = static_cast<CGFloat>(image.pixelsHigh()) - NSMaxY(source);
  return {sx, 0, 0, -sy, NSMinX(destination) - NSMinX(source) * sx, NSMaxY(destination) + top * sy};
}

ImageQuality qualityFor(NSImageInterpolation interpolation) {
  switch (interpolation) {
    case NSImageInterpolation::none:
      return ImageQuality::nearest;
    case NSImageInterpolation::low:
      return ImageQuality::bilinear;
    default:
      return ImageQuality::filtered;
  }
}

}  // namespace

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination) {
  draw(image, destination, NSZeroRect, state_.operation, state_.alpha);
}

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination, const NSRect& source,
                     NSCompositingOperation operation, CGFloat alpha) {
  if (&image == surface().bitmap().get()) {
    // What is drawn is the bitmap as it was.
    const auto frozen = image.copy();
    if (frozen != nullptr) draw(*frozen, destination, source, operation, alpha);
    return;
  }
  const NSRect whole{{}, image.size()};
  const NSRect wanted = source == NSZeroRect ? whole : source;
  const NSRect part = NSIntersectionRect(whole, wanted);
  if (NSIsEmptyRect(part) || NSIsEmptyRect(destination)) return;
  const ImagePlacement placement{
      {{NSMinX(part), NSHeight(whole) - NSMaxY(part)}, part.size},
      CGAffineTransformConcat(imageToUser(image, wanted, destination), deviceTransform())};
  const PathData outline = pathOfRect(placement.part);
  const FillShape shape(renderer_, outline,
                        {WindingRule::nonZero, placement.toDevice, antialias()});
  PixelBox visible = shape.bounds(state_.clip.box());
  if (const auto shadow = dropShadow()) {
    visible = unionBox(visible, shape.bounds(castingBox(*shadow, state_.clip.box())));
  }
  const PlacedImage placed =
      placeImage(image, placement, qualityFor(state_.interpolation), visible);
  if (placed.source == nullptr) return;
  const SpanPaint paint = SpanPaint::rows(*placed.source, unitToByte(alpha));
  castShadow(shape, paint, operation);
  const PixelBox& all = state_.clip.box();
  const PixelBox rows{all.x0, static_cast<int32_t>(std::max<int64_t>(all.y0, placed.rows.first)),
                      all.x1, static_cast<int32_t>(std::min<int64_t>(all.y1, placed.rows.end))};
  composite(state_.clip.intersected(rows), shape, paint, operation);
  compositeNothing(shape, rows, operation);
}
