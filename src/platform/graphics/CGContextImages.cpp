// How a context draws bitmaps: moved pixels are copied, upright ones go through the resampling
// filter, turned ones are sampled.
#include <cmath>
#include <utility>

#include "platform/graphics/CGContext.h"
#include "platform/graphics/ResampledImageSource.h"
#include "platform/graphics/pixels/ImageSource.h"
#include "platform/graphics/pixels/PixelMath.h"

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

/// True for the qualities that scale through the resampling filter.
bool filters(NSImageInterpolation quality) {
  return quality != NSImageInterpolation::none && quality != NSImageInterpolation::low;
}

/// True when rows of the image become rows of the device, up to rounding noise.
bool isUpright(const CGAffineTransform& t) {
  constexpr CGFloat kNoise = 1e-9;
  return std::fabs(t.b) <= kNoise * std::fabs(t.a) && std::fabs(t.c) <= kNoise * std::fabs(t.d);
}

/// The part of a bitmap that is drawn, and where its positions land.
struct ReducedImage {
  std::shared_ptr<NSBitmapImageRep> bitmap;  ///< null for the original
  NSRect part;
  CGAffineTransform toDevice;
};

/// For pictures that are turned: reduces the part to about the size at which it will be seen, so
/// that sampling single pixels of it is good enough.
ReducedImage reducedForDrawing(const NSBitmapImageRep& image, const NSRect& part,
                               const CGAffineTransform& toDevice) {
  const auto reduced = [](CGFloat length, CGFloat scale) {
    return scale < 1 ? std::ceil(length * scale) : length;
  };
  const CGFloat width = reduced(NSWidth(part), std::hypot(toDevice.a, toDevice.b));
  const CGFloat height = reduced(NSHeight(part), std::hypot(toDevice.c, toDevice.d));
  const ReducedImage original{nullptr, part, toDevice};
  if (width >= NSWidth(part) && height >= NSHeight(part)) return original;
  auto bitmap = resampledPart(image, part, static_cast<int64_t>(std::ceil(width)),
                              static_cast<int64_t>(std::ceil(height)));
  if (bitmap == nullptr) return original;
  const NSRect all{{0, 0}, bitmap->size()};
  const CGFloat sx = NSWidth(part) / NSWidth(all);
  const CGFloat sy = NSHeight(part) / NSHeight(all);
  const CGAffineTransform toOriginal{sx, 0, 0, sy, NSMinX(part), NSMinY(part)};
  return {std::move(bitmap), all, CGAffineTransformConcat(toOriginal, toDevice)};
}

}  // namespace

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
  const auto paintWith = [&](RowSource& pixels, const RowRange& painted) {
    paintRows(painted, shape, SpanPaint::rows(pixels, unitToByte(alpha)), operation);
  };
  int32_t dx = 0;
  int32_t dy = 0;
  if (movesWholePixels(toImage, &dx, &dy)) {
    MovedImageSource pixels(image, dx, dy);
    paintWith(pixels, {image.usedRows().first - dy, image.usedRows().end - dy});
  } else if (filters(state_.interpolation) && isUpright(toDevice)) {
    const ResampleMapping mapping{partFromTop, CGRectApplyAffineTransform(partFromTop, toDevice),
                                  toDevice.a < 0, toDevice.d < 0};
    ResampledImageSource pixels(image, mapping, shape.bounds(state_.clip.box()));
    paintWith(pixels, pixels.paintedRows());
  } else {
    const ReducedImage reduced = filters(state_.interpolation)
                                     ? reducedForDrawing(image, partFromTop, toDevice)
                                     : ReducedImage{nullptr, partFromTop, toDevice};
    const bool nearest = state_.interpolation == NSImageInterpolation::none;
    TransformedImageSource pixels(reduced.bitmap == nullptr ? image : *reduced.bitmap,
                                  wholePixels(reduced.part),
                                  CGAffineTransformInvert(reduced.toDevice),
                                  nearest ? ImageFilter::nearest : ImageFilter::bilinear);
    paint(shape, SpanPaint::rows(pixels, unitToByte(alpha)), operation);
  }
}
